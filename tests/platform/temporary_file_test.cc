#include "core/platform/temporary_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

TEST(TemporaryFile, GetsItsNameWhenItIsWhole) {
  const TemporaryFolder folder;
  const std::string path = folder.file("image");
  writeFile(path, "old");
  {
    TemporaryFile file(folder.path());
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
    TemporaryFile file(folder.path());
    TemporaryFile other(folder.path());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2);
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(TemporaryFile, SaysWhereItCannotBe) {
  const TemporaryFolder folder;
  try {
    const TemporaryFile file(folder.file("missing"));
    FAIL();
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.what(),
              "Cannot create a file in " + folder.file("missing") + ": No such file or directory");
  }
}

TEST(TemporaryFile, GoesWhenItCannotBeMoved) {
  const TemporaryFolder folder;
  {
    TemporaryFile file(folder.path());
    try {
      file.moveTo(folder.file("missing/name"));
      FAIL();
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.what(),
                "Cannot create " + folder.file("missing/name") + ": No such file or directory");
    }
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

}  // namespace
}  // namespace tessum
