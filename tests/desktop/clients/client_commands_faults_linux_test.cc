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

namespace fs = std::filesystem;

// Every how many system calls one is disturbed, and how many disturbances there must be at least.
constexpr int kStep = TESSUM_FAULT_STEP;
constexpr int kFewest = 8 / kStep;

struct Case {
  const char* name;
  const char* application;
  const char* file;
  const char* content;  // null for a missing file
  bool isRemoval;
};

constexpr char kJson[] = "{\"theme\": \"dark\", // mine\r\n\t\"mcpServers\": {\"other\": {},},}";

class ClientCommandsFaults : public testing::TestWithParam<Case> {
 protected:
  void SetUp() override {
    if (!canInjectFaults()) GTEST_SKIP() << "this system lets no program trace another";
    reset();
    old_ = content();
    const auto calls = program_.callsFrom(file_);
    for (std::size_t i = 0; i < calls.size(); i += kStep) calls_.push_back(calls[i]);
    new_ = content();
    ASSERT_NE(new_, old_);
  }

  // Puts everything in place for the command.
  void reset() const {
    for (const auto& entry : fs::directory_iterator(user_.home())) fs::remove_all(entry);
    if (GetParam().content != nullptr) writeFile(user_.file(GetParam().file), GetParam().content);
    if (GetParam().isRemoval) {
      ASSERT_EQ(run("install"), 0);
    }
  }

  int run(const char* action) const { return user_.run({action, GetParam().application}).status; }

  [[nodiscard]] std::string content() const {
    return fs::exists(file_) ? readFile(file_) : "missing";
  }

  // The names of temporary files anywhere below the home folder.
  [[nodiscard]] std::vector<std::string> temporaryFiles() const {
    std::vector<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(user_.home())) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with(".tessum")) paths.push_back(entry.path().string());
    }
    return paths;
  }

  // Whatever state the command left, installing and uninstalling afterwards work.
  void expectNextRunsAreRight() const {
    EXPECT_EQ(user_.run({"clients"}).status, 0);
    EXPECT_EQ(temporaryFiles(), std::vector<std::string>{}) << "any run removes them";
    EXPECT_EQ(run("install"), 0);
    EXPECT_EQ(run("uninstall"), 0);
    EXPECT_EQ(temporaryFiles(), std::vector<std::string>{});
    EXPECT_EQ(content(), GetParam().content == nullptr ? "missing" : GetParam().content);
  }

  const ClientUser user_{};
  const std::string file_ = user_.home() + "/" + GetParam().file;
  const TracedProgram program_{
      TESSUM_PROGRAM,
      {GetParam().isRemoval ? "uninstall" : "install", GetParam().application},
      user_.environment()};
  std::vector<SystemCall> calls_;
  std::string old_;
  std::string new_;
};

TEST_P(ClientCommandsFaults, AFailureLeavesTheOldFileOrTheNewOneAndNothingElse) {
  int failures = 0;
  for (const SystemCall& call : calls_) {
    for (const char* error : {"ENOSPC", "EINTR"}) {
      SCOPED_TRACE(call.name + " number " + std::to_string(call.occurrence) + ": " + error);
      reset();
      const ExitStatus status = program_.runWithFault(call, std::string("error=") + error);
      if (content() != new_) {
        EXPECT_EQ(content(), old_);
        EXPECT_EQ(status, kFailure);
        ++failures;
      }
      EXPECT_EQ(temporaryFiles(), std::vector<std::string>{});
    }
  }
  EXPECT_GE(failures, kFewest);
}

TEST_P(ClientCommandsFaults, InterruptedReadingIsNoFailure) {
  for (const SystemCall& call : calls_) {
    if (call.name != "openat" && call.name != "read") continue;
    SCOPED_TRACE(call.name + " number " + std::to_string(call.occurrence));
    reset();
    EXPECT_EQ(program_.runWithFault(call, "error=EINTR"), kSuccess);
    EXPECT_EQ(content(), new_);
  }
}

TEST_P(ClientCommandsFaults, AKillLeavesTheOldFileOrTheNewOneAndTheNextRunTidiesUp) {
  int kills = 0;
  for (const SystemCall& call : calls_) {
    SCOPED_TRACE(call.name + " number " + std::to_string(call.occurrence));
    reset();
    EXPECT_EQ(program_.runWithFault(call, "signal=KILL"),
              (ExitStatus{.code = {}, .signal = SIGKILL}));
    EXPECT_TRUE(content() == old_ || content() == new_) << content();
    ++kills;
    expectNextRunsAreRight();
  }
  EXPECT_GE(kills, kFewest);
}

std::string nameOf(const testing::TestParamInfo<Case>& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ClientCommandsFaults,
    testing::Values(Case{"Json", "cursor", ".cursor/mcp.json", kJson, false},
                    Case{"JsonRemoval", "cursor", ".cursor/mcp.json", kJson, true},
                    Case{"MissingFile", "vscode", ".config/Code/User/mcp.json", nullptr, false},
                    Case{"MadeFileRemoval", "vscode", ".config/Code/User/mcp.json", nullptr, true}),
    nameOf);

}  // namespace
}  // namespace tessum
