#include "core/platform/files.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/folder_contents.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kPermissions = 07777;

mode_t permissionsOf(const std::string& path) {
  struct stat found {};
  EXPECT_EQ(stat(path.c_str(), &found), 0) << path;
  return found.st_mode & kPermissions;
}

template <typename Call>
std::error_code errorOf(Call call) {
  try {
    call();
  } catch (const std::system_error& error) {
    return error.code();
  }
  return {};
}

// Drops root's power to do anything for a while, if this process has it.
class AsOrdinaryUser {
 public:
  explicit AsOrdinaryUser(const TemporaryFolder& folder) {
    constexpr uid_t kNobody = 65534;
    if (geteuid() != 0) return;
    EXPECT_EQ(chown(folder.path().c_str(), kNobody, kNobody), 0);
    EXPECT_EQ(seteuid(kNobody), 0);
  }
  ~AsOrdinaryUser() {
    if (getuid() != 0) return;
    EXPECT_EQ(seteuid(0), 0);
  }
};

class FilesTest : public testing::Test {
 protected:
  const TemporaryFolder folder_;
  const std::string path_ = folder_.file("settings.json");
  const SystemFiles files_{};
};

TEST_F(FilesTest, ReadsEveryByte) {
  const std::string bytes = std::string("a\0\xFF\r\n", 5) + std::string(100'000, 'x');
  writeFile(path_, bytes);
  EXPECT_EQ(files_.read(path_), bytes);
  writeFile(path_, "");
  EXPECT_EQ(files_.read(path_), "");
}

TEST_F(FilesTest, ReadingNamesTheFileThatIsMissing) {
  try {
    static_cast<void>(files_.read(path_));
    FAIL() << "read a file that does not exist";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    EXPECT_NE(std::string(error.what()).find(path_), std::string::npos) << error.what();
  }
}

TEST_F(FilesTest, ReadsAndReplacesOnlyRegularFiles) {
  const auto read = [&] { static_cast<void>(files_.read(path_)); };
  const auto replace = [&] { files_.replace(path_, "new"); };

  fs::create_directory(path_);
  EXPECT_EQ(errorOf(read), std::errc::is_a_directory);
  EXPECT_EQ(errorOf(replace), std::errc::is_a_directory);
  fs::remove(path_);

  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  EXPECT_EQ(errorOf(read), std::errc::invalid_argument);  // and it does not wait for a writer
  EXPECT_EQ(errorOf(replace), std::errc::invalid_argument);
  fs::remove(path_);

  fs::create_symlink("/dev/null", path_);
  EXPECT_EQ(errorOf(read), std::errc::invalid_argument);
  EXPECT_EQ(errorOf(replace), std::errc::invalid_argument);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(FilesTest, TellsWhetherSomethingExists) {
  EXPECT_FALSE(files_.exists(path_));
  fs::create_symlink("elsewhere", path_);
  EXPECT_FALSE(files_.exists(path_));
  writeFile(folder_.file("elsewhere"), "");
  EXPECT_TRUE(files_.exists(path_));
  EXPECT_TRUE(files_.exists(folder_.path()));
  EXPECT_FALSE(files_.exists(path_ + "/below"));
}

TEST_F(FilesTest, CreatesFoldersAndThoseAbove) {
  const std::string deep = folder_.file("a/b/c");
  files_.createFolders(deep);
  files_.createFolders(deep);
  EXPECT_TRUE(fs::is_directory(deep));
  writeFile(path_, "");
  EXPECT_EQ(errorOf([&] { files_.createFolders(path_ + "/d"); }), std::errc::not_a_directory);
}

TEST_F(FilesTest, ANewFileIsForTheUserAlone) {
  files_.replace(path_, "new");
  EXPECT_EQ(readFile(path_), "new");
  EXPECT_EQ(permissionsOf(path_), 0600u);
  EXPECT_EQ(namesIn(folder_.path()), std::vector<std::string>{"settings.json"});
}

TEST_F(FilesTest, ReplacingKeepsThePermissions) {
  for (const mode_t permissions : {0644u, 0600u, 0640u, 0400u, 0777u}) {
    writeFile(path_, "a longer old content");
    ASSERT_EQ(chmod(path_.c_str(), permissions), 0);
    files_.replace(path_, "new");
    EXPECT_EQ(readFile(path_), "new");
    EXPECT_EQ(permissionsOf(path_), permissions);
    fs::remove(path_);
  }
}

TEST_F(FilesTest, ReplacingKeepsTheOwner) {
  if (geteuid() != 0) GTEST_SKIP() << "only the administrator may give files away";
  writeFile(path_, "old");
  ASSERT_EQ(chown(path_.c_str(), 1234, 4321), 0);
  files_.replace(path_, "new");
  struct stat found {};
  ASSERT_EQ(stat(path_.c_str(), &found), 0);
  EXPECT_EQ(found.st_uid, 1234u);
  EXPECT_EQ(found.st_gid, 4321u);
}

TEST_F(FilesTest, AnotherUsersFileIsReplacedWhereTheFolderAllowsIt) {
  if (geteuid() != 0) GTEST_SKIP() << "only the administrator may give files away";
  writeFile(path_, "old");
  ASSERT_EQ(chmod(path_.c_str(), 0644), 0);
  const AsOrdinaryUser user(folder_);
  files_.replace(path_, "new");
  EXPECT_EQ(readFile(path_), "new");
}

struct GroupCase {
  mode_t before;
  mode_t after;
};

class FilesOfAnotherGroup : public FilesTest, public testing::WithParamInterface<GroupCase> {};

// The file is the user's own; its group is one that the user may not give.
TEST_P(FilesOfAnotherGroup, NobodyMayReadMoreWhenTheGroupCannotBeKept) {
  if (geteuid() != 0) GTEST_SKIP() << "only the administrator may give files to any group";
  constexpr uid_t kNobody = 65534;
  constexpr gid_t kForeignGroup = 4321;
  writeFile(path_, "old");
  ASSERT_EQ(chown(path_.c_str(), kNobody, kForeignGroup), 0);
  ASSERT_EQ(chmod(path_.c_str(), GetParam().before), 0);
  const AsOrdinaryUser user(folder_);
  files_.replace(path_, "new");
  EXPECT_EQ(readFile(path_), "new");
  EXPECT_EQ(permissionsOf(path_), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(Permissions, FilesOfAnotherGroup,
                         testing::Values(GroupCase{0640, 0600}, GroupCase{0660, 0600},
                                         GroupCase{0644, 0644}, GroupCase{0664, 0644},
                                         GroupCase{0604, 0600}, GroupCase{02750, 0700}));

TEST_F(FilesTest, AnEmptyContentEmptiesTheFile) {
  writeFile(path_, "old");
  files_.replace(path_, "");
  EXPECT_EQ(readFile(path_), "");
}

TEST_F(FilesTest, ASymbolicLinkStaysAndItsTargetIsReplaced) {
  fs::create_directory(folder_.file("real"));
  writeFile(folder_.file("real/target"), "old");
  fs::create_symlink("real/second", path_);
  fs::create_symlink("target", folder_.file("real/second"));  // relative to its own folder
  files_.replace(path_, "new");
  EXPECT_TRUE(fs::is_symlink(path_));
  EXPECT_TRUE(fs::is_symlink(folder_.file("real/second")));
  EXPECT_FALSE(fs::is_symlink(folder_.file("real/target")));
  EXPECT_EQ(readFile(folder_.file("real/target")), "new");
}

TEST_F(FilesTest, ALinkToAMissingFileStaysAndTheFileIsMade) {
  fs::create_symlink(folder_.file("target"), path_);
  files_.replace(path_, "new");
  EXPECT_TRUE(fs::is_symlink(path_));
  EXPECT_EQ(readFile(folder_.file("target")), "new");
}

TEST_F(FilesTest, ACircleOfLinksIsAFailure) {
  fs::create_symlink("settings.json", path_);
  EXPECT_EQ(errorOf([&] { files_.replace(path_, "new"); }),
            std::errc::too_many_symbolic_link_levels);
}

TEST_F(FilesTest, AFolderWithoutPermissionLeavesTheOldFile) {
  const AsOrdinaryUser user(folder_);
  writeFile(path_, "old");
  ASSERT_EQ(chmod(folder_.path().c_str(), 0500), 0);
  EXPECT_EQ(errorOf([&] { files_.replace(path_, "new"); }), std::errc::permission_denied);
  ASSERT_EQ(chmod(folder_.path().c_str(), 0700), 0);
  EXPECT_EQ(readFile(path_), "old");
  EXPECT_EQ(namesIn(folder_.path()), std::vector<std::string>{"settings.json"});
}

TEST_F(FilesTest, AFileWithoutPermissionCannotBeRead) {
  const AsOrdinaryUser user(folder_);
  writeFile(path_, "secret");
  ASSERT_EQ(chmod(path_.c_str(), 0), 0);
  EXPECT_EQ(errorOf([&] { static_cast<void>(files_.read(path_)); }), std::errc::permission_denied);
}

TEST_F(FilesTest, AWriteThatStopsHalfwayLeavesTheOldFile) {
  writeFile(path_, "old");
  ChildProcess::Options options;
  options.arguments = {path_, std::string(100'000, 'x')};
  options.prepare = [] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit fourKilobytes{4096, 4096};
    setrlimit(RLIMIT_FSIZE, &fourKilobytes);
  };
  ChildProcess program(TESSUM_REPLACE_FILE_PROGRAM, options);
  EXPECT_EQ(program.finish(), kFailure);
  EXPECT_NE(program.errors().find(std::strerror(EFBIG)), std::string::npos) << program.errors();
  EXPECT_EQ(readFile(path_), "old");
  EXPECT_EQ(namesIn(folder_.path()), std::vector<std::string>{"settings.json"});
}

}  // namespace
}  // namespace tessum
