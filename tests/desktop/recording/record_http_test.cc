#include <gtest/gtest.h>

#include <csignal>

#include "tests/desktop/recording/recorder.h"
#include "tests/support/x11_desktop.h"

namespace tessum {
namespace {

constexpr char kUrl[] = "http://localhost:7384/mcp";
const std::vector<std::string> kRecord = {"record", "--http", "--no-update-check"};

// Asks the endpoint for its tools, and returns the body and the status; 000 where none came.
std::string toolsOverHTTP(const Desktop& desktop) {
  return desktop
      .start("curl", {"--silent", "--max-time", "60", "--write-out", "|%{http_code}", "--header",
                      "Content-Type: application/json", "--data",
                      R"({"jsonrpc":"2.0","id":1,"method":"tools/list"})", kUrl})
      ->readRest();
}

TEST(RecordHTTP, AnswersBesideItsRecordingUntilItEnds) {
  Desktop desktop;
  desktop.startWindowManager();
  const auto recorder = desktop.start(TESSUM_PROGRAM, kRecord);
  if (const auto url = recorder->readLine(); url != kUrl) {
    GTEST_SKIP() << "another program has the port: " << recorder->errors();
  }
  const std::string answer = toolsOverHTTP(desktop);
  EXPECT_NE(answer.find("\"get_activities\""), std::string::npos) << answer;
  EXPECT_TRUE(answer.ends_with("|200")) << answer;

  // A second one cannot have the port, says so and records nothing.
  const std::string other = "XDG_DATA_HOME=" + desktop.home().file("other");
  const auto second = desktop.start(TESSUM_PROGRAM, kRecord, {other});
  EXPECT_EQ(second->wait(), (ExitStatus{.code = 1, .signal = {}}));
  EXPECT_NE(second->errors().find("7384"), std::string::npos) << second->errors();
  EXPECT_EQ(
      Sql(desktop.home().file("other/Tessum/activities.db")).row("SELECT count(*) FROM activities"),
      "0");

  recorder->kill(SIGTERM);
  EXPECT_EQ(recorder->wait(), kSuccess);
  EXPECT_TRUE(toolsOverHTTP(desktop).ends_with("|000"));
}

}  // namespace
}  // namespace tessum
