#include "core/platform/private_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "core/platform/file_lock.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

unsigned permissions(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0 ? found.st_mode & 07777U : 0;
}

TEST(CreatePrivateFolders, MakesAllThatAreMissingForTheUserAlone) {
  const TemporaryFolder folder;
  createPrivateFolders(folder.file("a/b/c"));
  EXPECT_EQ(permissions(folder.file("a")), 0700u);
  EXPECT_EQ(permissions(folder.file("a/b/c")), 0700u);
}

TEST(CreatePrivateFolders, LeavesAFolderThatExistsAsItIs) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkdir(folder.file("open").c_str(), 0755), 0);
  ASSERT_EQ(chmod(folder.file("open").c_str(), 0755), 0);
  createPrivateFolders(folder.file("open"));
  EXPECT_EQ(permissions(folder.file("open")), 0755u);
}

TEST(CreatePrivateFolders, FailsWithThePathWhereAFileIsInTheWay) {
  const TemporaryFolder folder;
  writeFile(folder.file("file"), "");
  for (const char* name : {"file", "file/below"}) {
    try {
      createPrivateFolders(folder.file(name));
      FAIL() << name;
    } catch (const std::system_error& error) {
      EXPECT_NE(std::string(error.what()).find(folder.file(name)), std::string::npos);
    }
  }
}

class PrivateFiles : public testing::Test {
 protected:
  [[nodiscard]] std::string make(const std::string& name, mode_t mode) const {
    const std::string path = folder_.file(name);
    writeFile(path, "content");
    chmod(path.c_str(), mode);
    return path;
  }

  const TemporaryFolder folder_;
};

TEST_F(PrivateFiles, AreMadeForTheUserAloneWhateverTheUmask) {
  for (const mode_t mask : {0U, 022U, 0777U}) {
    const mode_t before = umask(mask);
    const std::string path = folder_.file(std::to_string(mask));
    createPrivateFile(path);
    umask(before);
    EXPECT_EQ(permissions(path), 0600U) << mask;
  }
}

TEST_F(PrivateFiles, AreLeftAsTheyAreWhenTheyExist) {
  const std::string path = make("file", 0644);
  createPrivateFile(path);
  EXPECT_EQ(permissions(path), 0644U);
  EXPECT_EQ(readFile(path), "content");
  createPrivateFile(folder_.file("missing/file"));
  EXPECT_FALSE(std::filesystem::exists(folder_.file("missing")));
}

TEST_F(PrivateFiles, AreFoundWhenTheyAreOpenToOthers) {
  const std::string readable = make("readable", 0644);
  const std::string writable = make("writable", 0602);
  static_cast<void>(make("private", 0700));
  std::filesystem::create_directory(folder_.file("folder"));
  std::filesystem::create_symlink("private", folder_.file("link"));
  EXPECT_EQ(filesOpenToOthers(folder_.path()), (std::vector{readable, writable}));
  EXPECT_TRUE(filesOpenToOthers(folder_.file("missing")).empty());
}

TEST_F(PrivateFiles, LoseTheRightsOfOthersAlone) {
  const std::string path = make("file", 0754);
  closeToOthers(path);
  EXPECT_EQ(permissions(path), 0700U);
  EXPECT_THROW(closeToOthers(folder_.file("missing")), std::system_error);
}

TEST_F(PrivateFiles, KeepTheirLocks) {
  const std::string path = make("file", 0644);
  const auto lock = FileLock::take(path);
  ASSERT_TRUE(lock);
  closeToOthers(path);
  const pid_t other = fork();
  if (other == 0) _exit(FileLock::take(path) ? 1 : 0);
  int status = -1;
  waitpid(other, &status, 0);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace tessum
