// `Tessum record` while the user goes away and comes back. XTEST simulates the input; a fake logind
// simulates the lock and the computer's sleep.

#include <gtest/gtest.h>

#include <vector>

#include "core/platform/clock.h"
#include "tests/desktop/recording/recorder.h"
#include "tests/support/bus/fake_logind_linux.h"
#include "tests/support/desktop/x11_desktop.h"
#include "tests/support/environment.h"

namespace tessum {
namespace {

using Rows = Recorder::Rows;

class AwayRecording : public testing::Test {
 protected:
  void SetUp() override {
    system_.start();
    session_.start();
    logind_.emplace(loop_, system_.address());
    desktop_.startWindowManager();
    desktop_.addWindow("App");
  }

  void record(const std::vector<std::string>& options) {
    std::vector<std::string> arguments{"record", "--no-update-check", "--titles", "last"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    recorder_ = desktop_.start(TESSUM_PROGRAM, arguments);
    ASSERT_TRUE(runUntil(
        loop_, [&] { return logind_->heldInhibitors() == 1 && logind_->hasToldSession(); }));
  }

  // Simulates input.
  void touch() { desktop_.run("xdotool", {"mousemove_relative", "--", "1", "1"}); }

  // The sessions, each as "closed" or "open".
  [[nodiscard]] Rows sessions() const {
    try {
      return Sql(path()).rows(
          "SELECT CASE WHEN end_time IS NULL THEN 'open' WHEN end_time >= start_time THEN 'closed' "
          "ELSE 'crossed' END FROM activities ORDER BY id");
    } catch (const std::runtime_error&) {
      return {};  // a write is in progress
    }
  }
  [[nodiscard]] bool comesTo(const Rows& rows) {
    return runUntil(loop_, [&] { return sessions() == rows; });
  }

  // Seconds between the end of session `id` and `moment`.
  [[nodiscard]] double endedBefore(int id, double moment) const {
    return moment - std::stod(Sql(path()).row("SELECT end_time FROM activities WHERE id = " +
                                              std::to_string(id)));
  }

  [[nodiscard]] std::string path() const { return desktop_.dataFolder() + "/activities.db"; }
  static double now() { return SystemClock().now().secondsSince1970; }

  SystemMainLoop loop_;
  PrivateBus system_;
  PrivateBus session_;
  const ScopedVariable systemAddress_{"DBUS_SYSTEM_BUS_ADDRESS", system_.address().c_str()};
  const ScopedVariable sessionAddress_{"DBUS_SESSION_BUS_ADDRESS", session_.address().c_str()};
  std::optional<FakeLogind> logind_;
  Desktop desktop_;
  std::unique_ptr<ChildProcess> recorder_;
};

TEST_F(AwayRecording, WithoutInputEndsAtTheLastAndBeginsWithTheNext) {
  ASSERT_NO_FATAL_FAILURE(record({"--away-after", "2s"}));
  touch();
  const double lastInput = now();
  ASSERT_TRUE(comesTo({"closed"}));
  EXPECT_GE(now() - lastInput, 1.9) << "two seconds have to go by";
  EXPECT_NEAR(endedBefore(1, lastInput), 0, 0.5);
  touch();
  EXPECT_TRUE(comesTo({"closed", "open"}));
}

TEST_F(AwayRecording, ALockEndsAtOnceAndInputDoesNotUnlock) {
  ASSERT_NO_FATAL_FAILURE(record({}));
  const double locked = now();
  logind_->changeSession("LockedHint", true);
  ASSERT_TRUE(comesTo({"closed"}));
  EXPECT_NEAR(endedBefore(1, locked), 0, 0.5);
  touch();
  logind_->emitFromSession("Unlock");
  logind_->changeSession("LockedHint", false);
  EXPECT_TRUE(comesTo({"closed", "open"}));
}

TEST_F(AwayRecording, TheEndIsWrittenBeforeTheComputerSleeps) {
  ASSERT_NO_FATAL_FAILURE(record({}));
  ASSERT_TRUE(comesTo({"open"}));
  logind_->prepare("PrepareForSleep", true);
  ASSERT_TRUE(runUntil(loop_, [&] { return logind_->heldInhibitors() == 0; }));
  EXPECT_EQ(sessions(), Rows{"closed"}) << "now it may sleep";
  logind_->prepare("PrepareForSleep", false);
  touch();
  EXPECT_TRUE(comesTo({"closed", "open"}));
}

TEST_F(AwayRecording, TheEndOfTheLoginSessionEndsTheRecorder) {
  ASSERT_NO_FATAL_FAILURE(record({}));
  ASSERT_TRUE(comesTo({"open"}));
  logind_->emitOfSession("SessionRemoved", FakeLogind::kSession, FakeLogind::kSessionPath);
  ASSERT_TRUE(comesTo({"closed"}));
  EXPECT_EQ(recorder_->wait(), kSuccess);
  EXPECT_EQ(recorder_->errors(), "");
}

}  // namespace
}  // namespace tessum
