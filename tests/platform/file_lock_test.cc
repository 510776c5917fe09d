#include "core/platform/file_lock.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <system_error>

#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

TEST(FileLock, IsHeldByOneAtATime) {
  const TemporaryFolder folder;
  auto first = FileLock::take(folder.file("lock"));
  ASSERT_TRUE(first.has_value());
  EXPECT_FALSE(FileLock::take(folder.file("lock")).has_value());
  EXPECT_TRUE(FileLock::take(folder.file("other")).has_value());
  first.reset();
  EXPECT_TRUE(FileLock::take(folder.file("lock")).has_value());
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
  const pid_t child = fork();
  if (child == 0) {
    const auto lock = FileLock::take(folder.file("lock"));
    _exit(lock.has_value() ? 0 : 1);  // without giving anything back itself
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(FileLock::take(folder.file("lock")).has_value());
}

TEST(FileLock, NamesTheFileItCannotOpen) {
  const TemporaryFolder folder;
  try {
    static_cast<void>(FileLock::take(folder.file("missing/lock")));
    FAIL() << "expected an error";
  } catch (const std::system_error& error) {
    EXPECT_NE(std::string(error.what()).find(folder.file("missing/lock")), std::string::npos);
  }
}

}  // namespace
}  // namespace tessum
