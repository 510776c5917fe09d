// Makes each of the program's system calls, from the first one on the configuration file, fail in
// every way.

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/desktop/clients/client_user.h"
#include "tests/support/folder_contents.h"
#include "tests/support/system_call_faults_linux.h"

namespace tessum {
namespace {

constexpr char kOld[] = R"({"theme":"dark","mcpServers":{"other":{"command":"x"}}})";

class ClientCommandsFaults : public testing::Test {
 protected:
  void SetUp() override {
    if (!canInjectFaults()) GTEST_SKIP() << "this system lets no program trace another";
    reset();
    calls_ = program_.callsFrom(file_);
    new_ = readFile(file_);
    ASSERT_NE(new_, kOld);
  }

  void reset() const {
    std::filesystem::remove_all(std::filesystem::path(file_).parent_path());
    writeFile(user_.file(".cursor/mcp.json"), kOld);
  }

  const ClientUser user_{};
  const std::string file_ = user_.file(".cursor/mcp.json");
  const TracedProgram program_{TESSUM_PROGRAM, {"install", "cursor"}, user_.environment()};
  std::vector<SystemCall> calls_;
  std::string new_;
};

TEST_F(ClientCommandsFaults, AFailureLeavesTheOldFileOrTheNewOneAndNothingElse) {
  int failures = 0;
  for (const SystemCall& call : calls_) {
    for (const char* error : {"ENOSPC", "EACCES", "EROFS", "EIO", "EINTR"}) {
      SCOPED_TRACE(call.name + " number " + std::to_string(call.occurrence) + ": " + error);
      reset();
      const ExitStatus status = program_.runWithFault(call, std::string("error=") + error);
      const std::string content = readFile(file_);
      if (content != new_) {
        EXPECT_EQ(content, kOld);
        EXPECT_EQ(status, (ExitStatus{.code = 1, .signal = {}}));
        ++failures;
      }
      EXPECT_EQ(namesIn(user_.file(".cursor")), std::vector<std::string>{"mcp.json"});
    }
  }
  EXPECT_GE(failures, 4 * 8);  // opening and reading, too
}

TEST_F(ClientCommandsFaults, InterruptedReadingIsNoFailure) {
  int reads = 0;
  for (const SystemCall& call : calls_) {
    if (call.name != "openat" && call.name != "read") continue;
    SCOPED_TRACE(call.name + " number " + std::to_string(call.occurrence));
    reset();
    EXPECT_EQ(program_.runWithFault(call, "error=EINTR"), kSuccess);
    EXPECT_EQ(readFile(file_), new_);
    ++reads;
  }
  EXPECT_GE(reads, 3);  // opening, reading, and the end of the file
}

TEST_F(ClientCommandsFaults, AKillLeavesTheOldFileOrTheNewOne) {
  for (const SystemCall& call : calls_) {
    SCOPED_TRACE(call.name + " number " + std::to_string(call.occurrence));
    reset();
    EXPECT_EQ(program_.runWithFault(call, "signal=KILL"),
              (ExitStatus{.code = {}, .signal = SIGKILL}));
    const std::string content = readFile(file_);
    EXPECT_TRUE(content == kOld || content == new_) << content;
  }
}

}  // namespace
}  // namespace tessum
