#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/desktop/recording/recorder.h"
#include "tests/support/desktop/x11_desktop.h"

namespace tessum {
namespace {

constexpr char kUrl[] = "http://localhost:7384/mcp";
const std::vector<std::string> kRecord = {"record", "--http", "--no-update-check"};
constexpr char kTools[] = R"({"jsonrpc":"2.0","id":1,"method":"tools/list"})";

// A desktop, with a program that has the endpoint's port unless another program has it.
class RecordHTTP : public testing::Test {
 protected:
  RecordHTTP() { desktop_.startWindowManager(); }

  // Starts the program, and returns it when it has opened the endpoint.
  std::unique_ptr<ChildProcess> open(const std::vector<std::string>& arguments) {
    auto program = desktop_.start(TESSUM_PROGRAM, arguments);
    if (program->readLine() == kUrl) return program;
    EXPECT_NE(program->errors().find("Address already in use"), std::string::npos)
        << program->errors();
    return nullptr;
  }

  // Posts a message to the endpoint, and returns the body and the status; 000 where none came.
  [[nodiscard]] std::string post(const std::string& message,
                                 const std::vector<std::string>& headers = {}) const {
    std::vector<std::string> arguments{"--silent", "--max-time", "60", "--write-out",
                                       "|%{http_code}"};
    for (const std::string& header : headers) arguments.insert(arguments.end(), {"-H", header});
    arguments.insert(arguments.end(), {"-H", "Content-Type: application/json"});
    arguments.insert(arguments.end(), {"--data", message, kUrl});
    return desktop_.start("curl", arguments)->readRest();
  }

  [[nodiscard]] bool answers() const {
    const std::string answer = post(kTools);
    return answer.find("\"get_activities\"") != std::string::npos && answer.ends_with("|200");
  }

  [[nodiscard]] bool isSilent() const { return post(kTools) == "|000"; }

  Desktop desktop_;
};

TEST_F(RecordHTTP, AnswersBesideItsRecordingUntilItEnds) {
  const auto recorder = open(kRecord);
  if (!recorder) GTEST_SKIP() << "another program has the port";
  EXPECT_TRUE(answers());

  // A second one cannot get the port, says so and records nothing.
  const std::string other = "XDG_DATA_HOME=" + desktop_.home().file("other");
  const auto second = desktop_.start(TESSUM_PROGRAM, kRecord, {other});
  EXPECT_EQ(second->wait(), kFailure);
  EXPECT_NE(second->errors().find("7384"), std::string::npos) << second->errors();
  EXPECT_EQ(Sql(desktop_.home().file("other/Tessum/activities.db"))
                .row("SELECT count(*) FROM activities"),
            "0");

  recorder->kill(SIGTERM);
  EXPECT_EQ(recorder->wait(), kSuccess);
  EXPECT_TRUE(isSilent());
}

TEST_F(RecordHTTP, KeepsOutPagesUnlessItIsOpen) {
  const std::string page = "Origin: http://example.org";
  const std::string rebound = "Host: example.org:7384";
  auto recorder = open(kRecord);
  if (!recorder) GTEST_SKIP() << "another program has the port";
  EXPECT_EQ(post(kTools, {page}), "Web pages are not answered.|403");
  EXPECT_TRUE(post(kTools, {rebound}).ends_with("|403"));
  recorder->kill(SIGTERM);
  EXPECT_EQ(recorder->wait(), kSuccess);

  recorder = open({"record", "--http-open", "--no-update-check"});
  ASSERT_TRUE(recorder);
  EXPECT_TRUE(post(kTools, {page}).ends_with("|200"));
  EXPECT_TRUE(post(kTools, {rebound}).ends_with("|200"));
}

TEST_F(RecordHTTP, GoesOnWhenARequestStopsTheEngine) {
  const auto recorder = open(kRecord);
  if (!recorder) GTEST_SKIP() << "another program has the port";
  EXPECT_EQ(post(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":)"
                 R"({"name":"get_activities","arguments":{"limit":2147483648}}})"),
            "|000");
  desktop_.addWindow("Recorded");
  EXPECT_TRUE(eventually([&] { return answers(); }));
  recorder->kill(SIGTERM);
  EXPECT_EQ(recorder->wait(), kSuccess);
  EXPECT_NE(recorder->errors().find("has ended; it starts again in 1 s"), std::string::npos)
      << recorder->errors();
  EXPECT_EQ(Sql(desktop_.dataFolder() + "/activities.db")
                .row("SELECT count(*) FROM activities WHERE app_name = 'Recorded'"),
            "1");
}

TEST_F(RecordHTTP, EndsWithARecorderThatIsKilled) {
  const auto recorder = open(kRecord);
  if (!recorder) GTEST_SKIP() << "another program has the port";
  recorder->kill(SIGKILL);
  EXPECT_TRUE(eventually([&] { return isSilent(); }));
}

TEST_F(RecordHTTP, IsServedAloneAsWell) {
  const auto server = open({"serve"});
  if (!server) GTEST_SKIP() << "another program has the port";
  server->closeInput();
  EXPECT_TRUE(answers());
  EXPECT_EQ(post(kTools, {"Origin: null"}), "Web pages are not answered.|403");
  server->kill(SIGTERM);
  EXPECT_EQ(server->wait(), kSuccess);
  EXPECT_TRUE(isSilent());
}

}  // namespace
}  // namespace tessum
