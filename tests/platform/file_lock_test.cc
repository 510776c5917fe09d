#include "core/platform/file_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <system_error>

#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

// Whether `test` holds in another process, because a process does not conflict with its own locks.
bool holdsElsewhere(const std::function<bool()>& test) {
  const pid_t child = fork();
  if (child == 0) _exit(test() ? 0 : 1);
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return status == 0;
}

TEST(FileLock, IsHeldByOneProcessAtATime) {
  const TemporaryFolder folder;
  const std::string path = folder.file("lock");
  auto first = FileLock::take(path);
  ASSERT_TRUE(first.has_value());
  EXPECT_TRUE(holdsElsewhere([&] { return !FileLock::take(path); }));
  EXPECT_TRUE(holdsElsewhere([&] { return FileLock::take(path + "2").has_value(); }));
  first.reset();
  EXPECT_TRUE(holdsElsewhere([&] { return FileLock::take(path).has_value(); }));
}

TEST(FileLock, CreatesItsFileForTheUserAlone) {
  const TemporaryFolder folder;
  const auto lock = FileLock::take(folder.file("lock"));
  struct stat found {};
  ASSERT_EQ(stat(folder.file("lock").c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777U, 0600U);
}

TEST(FileLock, IsGivenBackByAProcessThatDies) {
  const TemporaryFolder folder;
  const std::string path = folder.file("lock");
  EXPECT_TRUE(holdsElsewhere([&] { return FileLock::take(path).has_value(); }));
  EXPECT_FALSE(readLockFile(path)->isHeld);
  EXPECT_TRUE(FileLock::take(path).has_value());
}

TEST(FileLock, IsSeenByOthersWhoDoNotTakeIt) {
  const TemporaryFolder folder;
  const std::string path = folder.file("lock");
  EXPECT_FALSE(readLockFile(path).has_value());
  const auto lock = FileLock::take(path);
  lock->write("a longer text");
  lock->write("text");
  EXPECT_TRUE(holdsElsewhere([&] {
    const auto found = readLockFile(path);
    return found && found->isHeld && found->content == "text";
  }));
  EXPECT_TRUE(holdsElsewhere([&] { return !FileLock::take(path); })) << "looking took the lock";
}

TEST(FileLock, ShowsWhenItWasTouched) {
  const TemporaryFolder folder;
  const std::string path = folder.file("lock");
  {
    const auto lock = FileLock::take(path);
    const std::array<timespec, 2> past{timespec{1000, 0}, timespec{1000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), past.data(), 0), 0);
    EXPECT_TRUE(holdsElsewhere([&] { return readLockFile(path)->lastModified == Date{1000}; }));
    lock->touch();
  }
  EXPECT_GT(readLockFile(path)->lastModified.secondsSince1970, 1000);
}

TEST(FileLock, NamesTheFileItCannotOpen) {
  const TemporaryFolder folder;
  const std::string path = folder.file("missing/lock");
  try {
    static_cast<void>(FileLock::take(path));
    FAIL() << "expected an error";
  } catch (const std::system_error& error) {
    EXPECT_NE(std::string(error.what()).find(path), std::string::npos);
  }
}

}  // namespace
}  // namespace tessum
