#include "core/loop/file_watcher.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <system_error>

#include "core/platform/files.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

class FileWatcherTest : public testing::Test {
 protected:
  // Whether the watcher has reported a change; clears it.
  [[nodiscard]] bool tells() {
    const bool hasTold = loop_.runUntil([&] { return told_ > 0; });
    told_ = 0;
    return hasTold;
  }

  TemporaryFolder folder_;
  const std::string path_ = folder_.file("settings");
  FakeClock clock_;
  FakeMainLoop loop_{clock_};
  int told_ = 0;
  const std::function<void()> count_ = [this] { ++told_; };
};

TEST_F(FileWatcherTest, TellsOfAFileThatIsMadeWrittenAndRemoved) {
  const FileWatcher watcher(loop_, path_, count_);
  writeFile(path_, "a");
  EXPECT_TRUE(tells());
  std::ofstream(path_, std::ios::app) << "b";
  EXPECT_TRUE(tells());
  fs::remove(path_);
  EXPECT_TRUE(tells());
}

TEST_F(FileWatcherTest, TellsOfAFileThatTakesItsPlaceTimeAndAgain) {
  writeFile(path_, "a");
  const FileWatcher watcher(loop_, path_, count_);
  for (const char* text : {"b", "c", "d"}) {
    SystemFiles().replace(path_, text);
    EXPECT_TRUE(tells());
  }
}

// As some editors do.
TEST_F(FileWatcherTest, TellsOfAFileThatIsMovedAwayAndMadeAnew) {
  writeFile(path_, "a");
  const FileWatcher watcher(loop_, path_, count_);
  fs::rename(path_, path_ + "~");
  EXPECT_TRUE(tells());
  writeFile(path_, "b");
  EXPECT_TRUE(tells());
}

TEST_F(FileWatcherTest, TellsOfTheFileThatALinkPointsAt) {
  fs::create_directories(folder_.file("elsewhere"));
  const std::string target = folder_.file("elsewhere/mine");
  writeFile(target, "a");
  fs::create_symlink(target, path_);
  const FileWatcher watcher(loop_, path_, count_);
  SystemFiles().replace(target, "b");
  EXPECT_TRUE(tells());
  std::ofstream(target) << "c";
  EXPECT_TRUE(tells());
}

TEST_F(FileWatcherTest, FollowsALinkThatPointsAtAnother) {
  fs::create_directories(folder_.file("elsewhere"));
  const std::string target = folder_.file("elsewhere/mine");
  writeFile(target, "a");
  writeFile(path_, "a");
  const FileWatcher watcher(loop_, path_, count_);
  fs::create_symlink(target, path_ + ".new");
  fs::rename(path_ + ".new", path_);
  EXPECT_TRUE(tells());
  std::ofstream(target) << "b";
  EXPECT_TRUE(tells());
}

TEST_F(FileWatcherTest, FollowsItsFolderWhenThatIsRemovedAndMadeAgain) {
  fs::create_directories(folder_.file("above/own"));
  const std::string path = folder_.file("above/own/settings");
  const FileWatcher watcher(loop_, path, count_);
  for (const char* removed : {"above/own", "above"}) {
    fs::remove_all(folder_.file(removed));
    EXPECT_TRUE(tells());
    fs::create_directories(folder_.file("above/own"));
    EXPECT_TRUE(tells());
    writeFile(path, "a");
    EXPECT_TRUE(tells());
  }
}

TEST_F(FileWatcherTest, FollowsItsFolderWhenAnotherTakesItsPlace) {
  for (const char* folder : {"own", "other"}) fs::create_directory(folder_.file(folder));
  const std::string path = folder_.file("own/settings");
  const FileWatcher watcher(loop_, path, count_);
  fs::rename(folder_.file("own"), folder_.file("old"));
  fs::rename(folder_.file("other"), folder_.file("own"));
  EXPECT_TRUE(tells());
  writeFile(path, "a");
  EXPECT_TRUE(tells());
}

TEST_F(FileWatcherTest, MayBeEndedByWhatItTells) {
  std::unique_ptr<FileWatcher> watcher;
  watcher = std::make_unique<FileWatcher>(loop_, path_, [&] {
    ++told_;
    watcher.reset();
  });
  writeFile(path_, "a");
  EXPECT_TRUE(tells());
}

TEST_F(FileWatcherTest, AFolderThatIsNotThereCannotBeWatched) {
  EXPECT_THROW(FileWatcher(loop_, folder_.file("missing/settings"), count_), std::system_error);
}

#ifdef __linux__

// Events arrive in order, so one of the file would have arrived before that of the second watcher.
TEST_F(FileWatcherTest, IsSilentAboutOtherFiles) {
  const FileWatcher watcher(loop_, path_, count_);
  int others = 0;
  const FileWatcher other(loop_, path_ + "2", [&] { ++others; });
  writeFile(path_ + "2", "a");
  EXPECT_TRUE(loop_.runUntil([&] { return others > 0; }));
  EXPECT_EQ(told_, 0);
}

#endif

}  // namespace
}  // namespace tessum
