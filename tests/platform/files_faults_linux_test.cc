// Makes each system call of replacing a file fail in every way.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "core/platform/files.h"
#include "tests/support/folder_contents.h"
#include "tests/support/system_call_faults_linux.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

// Replaces an existing file, a missing one, and one behind a symbolic link.
enum class Start { existing, missing, linked };

class FilesFaults : public testing::TestWithParam<Start> {
 protected:
  void SetUp() override {
    if (!canInjectFaults()) GTEST_SKIP() << "this system lets no program trace another";
    if (GetParam() == Start::linked) std::filesystem::create_symlink("real", path_);
  }

  void reset() {
    for (const std::string& name : namesIn(folder_.path())) {
      if (folder_.file(name) != path_ || GetParam() != Start::linked) {
        std::filesystem::remove(folder_.file(name));
      }
    }
    if (GetParam() == Start::missing) return;
    writeFile(path_, "old");
    ASSERT_EQ(chmod(path_.c_str(), 0640), 0);
  }

  [[nodiscard]] std::string content() const {
    return std::filesystem::exists(path_) ? readFile(path_) : "missing";
  }

  [[nodiscard]] std::string oldContent() const {
    return GetParam() == Start::missing ? "missing" : "old";
  }

  // The permissions of the file as it is: whichever it is, they are right from the beginning.
  void expectPermissions() const {
    struct stat found {};
    if (stat(path_.c_str(), &found) != 0) return;
    EXPECT_EQ(found.st_mode & 07777u, GetParam() == Start::missing ? 0600u : 0640u);
  }

  [[nodiscard]] std::vector<SystemCall> calls() {
    reset();
    auto calls = program_.callsFrom(path_);
    EXPECT_EQ(content(), "new");
    return calls;
  }

  [[nodiscard]] bool isTemporaryFileLeft() const {
    for (const std::string& name : namesIn(folder_.path())) {
      if (name.starts_with(".tessum-")) return true;
    }
    return false;
  }

  const TemporaryFolder folder_;
  const std::string path_ = folder_.file("settings.json");
  const TracedProgram program_{TESSUM_REPLACE_FILE_PROGRAM, {path_, "new"}, {}};
};

TEST_P(FilesFaults, AFailureLeavesTheOldFileAndNothingElse) {
  int failures = 0;
  for (const SystemCall& call : calls()) {
    for (const char* error : {"ENOSPC", "EACCES", "EROFS", "EIO"}) {
      SCOPED_TRACE(call.name + " number " + std::to_string(call.occurrence) + ": " + error);
      reset();
      const ExitStatus status = program_.runWithFault(call, std::string("error=") + error);
      if (status != kSuccess) {
        EXPECT_EQ(status, kFailure);
        ++failures;
      }
      EXPECT_EQ(content(), status == kSuccess ? "new" : oldContent());
      EXPECT_FALSE(isTemporaryFileLeft());
      expectPermissions();
    }
  }
  EXPECT_GE(failures, 4 * 6);  // opening, writing, permissions, flushing, closing and renaming
}

TEST_P(FilesFaults, AnInterruptionIsNoFailure) {
  for (const SystemCall& call : calls()) {
    SCOPED_TRACE(call.name + " number " + std::to_string(call.occurrence));
    reset();
    EXPECT_EQ(program_.runWithFault(call, "error=EINTR"), kSuccess);
    EXPECT_EQ(content(), "new");
    EXPECT_FALSE(isTemporaryFileLeft());
    expectPermissions();
  }
}

TEST_P(FilesFaults, AKillLeavesTheOldFileOrTheNewOne) {
  int old = 0;
  for (const SystemCall& call : calls()) {
    SCOPED_TRACE(call.name + " number " + std::to_string(call.occurrence));
    reset();
    EXPECT_EQ(program_.runWithFault(call, "signal=KILL"),
              (ExitStatus{.code = {}, .signal = SIGKILL}));
    if (content() == oldContent()) {
      ++old;
    } else {
      EXPECT_EQ(content(), "new");
    }
    expectPermissions();
    SystemFiles().replace(path_, "new");
    EXPECT_EQ(content(), "new");
    EXPECT_FALSE(isTemporaryFileLeft()) << "the next replacement removes it";
  }
  EXPECT_GE(old, 6);
}

TEST_P(FilesFaults, WhereThereAreNoLocksOldTemporaryFilesGoAndNewOnesStay) {
  reset();
  const std::string left = folder_.file(".tessum-new-abcdef");
  for (const bool isOld : {true, false}) {
    writeFile(left, "half");
    const auto now = std::filesystem::file_time_type::clock::now();
    std::filesystem::last_write_time(left, now - std::chrono::minutes(isOld ? 61 : 59));
    EXPECT_EQ(program_.runWithFault({.name = "flock", .occurrence = 1}, "error=ENOLCK"), kSuccess);
    EXPECT_EQ(content(), "new");
    EXPECT_EQ(std::filesystem::exists(left), !isOld);
  }
}

std::string nameOf(const testing::TestParamInfo<Start>& start) {
  if (start.param == Start::existing) return "Existing";
  return start.param == Start::missing ? "Missing" : "Linked";
}

INSTANTIATE_TEST_SUITE_P(Starts, FilesFaults,
                         testing::Values(Start::existing, Start::missing, Start::linked), nameOf);

}  // namespace
}  // namespace tessum
