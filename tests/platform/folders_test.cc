#include "core/platform/folders.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <system_error>

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

}  // namespace
}  // namespace tessum
