#include "core/platform/temporary_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <system_error>

#include "tests/support/eventually.h"
#include "tests/support/folder_contents.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

TEST(TemporaryFile, GetsItsNameWhenItIsWhole) {
  const TemporaryFolder folder;
  const std::string path = folder.file("image");
  writeFile(path, "old");
  {
    TemporaryFile file(folder.path(), "test");
    EXPECT_EQ(write(file.descriptor(), "new", 3), 3);
    EXPECT_EQ(readFile(path), "old");
    file.moveTo(path);
  }
  EXPECT_EQ(readFile(path), "new");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
  struct stat found {};
  ASSERT_EQ(stat(path.c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 07777, 0600u);
}

TEST(TemporaryFile, GoesWhenItWasNotMoved) {
  const TemporaryFolder folder;
  {
    TemporaryFile file(folder.path(), "test");
    TemporaryFile other(folder.path(), "test");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2);
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(TemporaryFile, SaysWhereItCannotBe) {
  const TemporaryFolder folder;
  try {
    const TemporaryFile file(folder.file("missing"), "test");
    FAIL();
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.what(),
              "Cannot create a file in " + folder.file("missing") + ": " + std::strerror(ENOENT));
  }
}

TEST(TemporaryFile, GoesWhenItCannotBeMoved) {
  const TemporaryFolder folder;
  {
    TemporaryFile file(folder.path(), "test");
    try {
      file.moveTo(folder.file("missing/name"));
      FAIL();
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.what(),
                "Cannot write " + folder.file("missing/name") + ": " + std::strerror(ENOENT));
    }
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

// Makes a temporary file in a process that ends without removing it. `beforeItEnds` runs there.
void leaveFileBehind(
    const std::string& folder, const std::function<void()>& beforeItEnds = [] {}) {
  const pid_t child = fork();
  if (child == 0) {
    const TemporaryFile file(folder, "test");
    beforeItEnds();
    _exit(0);  // without destroying anything
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_EQ(status, 0);
}

TEST(TemporaryFile, GoesWithTheNextOneWhenItsProcessWasKilled) {
  const TemporaryFolder folder;
  leaveFileBehind(folder.path());
  const auto left = namesIn(folder.path());
  ASSERT_EQ(left.size(), 1u);
  const TemporaryFile next(folder.path(), "test");
  EXPECT_EQ(namesIn(folder.path()).size(), 1u);
  EXPECT_NE(namesIn(folder.path()), left);
}

TEST(TemporaryFile, StaysWhileAnotherProcessWritesToIt) {
  const TemporaryFolder folder;
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const Descriptor readEnd(ends[0]);
  Descriptor writeEnd(ends[1]);
  leaveFileBehind(folder.path(), [&] {
    if (fork() != 0) return;
    // A process that has a copy of the descriptor and lives until the pipe is closed.
    static_cast<void>(writeEnd.close());
    char byte = 0;
    _exit(read(readEnd.number(), &byte, 1) == 0 ? 0 : 1);
  });
  const auto left = namesIn(folder.path());
  ASSERT_EQ(left.size(), 1u);
  { const TemporaryFile next(folder.path(), "test"); }
  EXPECT_EQ(namesIn(folder.path()), left);

  EXPECT_EQ(writeEnd.close(), 0);
  EXPECT_TRUE(eventually([&] {
    { const TemporaryFile next(folder.path(), "test"); }
    return namesIn(folder.path()).empty();
  }));
}

TEST(TemporaryFile, LeavesWhatIsNoneOfThem) {
  const TemporaryFolder folder;
  for (const char* name : {"test-abcdef", ".test-abcde", ".test-abcdefg", ".tests-abcdef"}) {
    writeFile(folder.file(name), "mine");
  }
  fs::create_directory(folder.file(".test-folder"));
  fs::create_symlink("test-abcdef", folder.file(".test-link12"));
  const auto names = namesIn(folder.path());
  { const TemporaryFile file(folder.path(), "test"); }
  EXPECT_EQ(namesIn(folder.path()), names);
}

}  // namespace
}  // namespace tessum
