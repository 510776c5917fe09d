#include "tests/monitor/activity_monitor_fixture.h"

namespace tessum {
namespace {

// A clock that moves on by a second at each reading, to tell readings apart.
class TickingClock final : public Clock {
 public:
  [[nodiscard]] Date now() const override {
    readings_ += 1;
    return {1000 + readings_};
  }

 private:
  mutable double readings_ = 0;
};

TEST_F(ActivityMonitorTest, DoesNothingBeforeItIsStarted) {
  workspace_.activate(kEditor);
  loop_.advance(20);
  EXPECT_EQ(sessions(), Rows{});
  EXPECT_EQ(workspace_.calls, Calls{});
  EXPECT_TRUE(loop_.timerIntervals().empty());
}

TEST_F(ActivityMonitorTest, StartsWithTheApplicationInFront) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1000|NULL"}));
}

TEST_F(ActivityMonitorTest, StartsWithoutASessionWhenNothingIsInFront) {
  monitor_->start();
  EXPECT_EQ(sessions(), Rows{});
  clock_.advance(3);
  workspace_.activate(kEditor);
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1003|NULL"}));
}

TEST_F(ActivityMonitorTest, RegistersBeforeItLooksAtWhatIsInFront) {
  monitor_->start();
  EXPECT_EQ(workspace_.calls, (Calls{"add observer", "frontmost application"}));
  EXPECT_EQ(loop_.timerIntervals(), std::vector<double>{5.0});
}

TEST_F(ActivityMonitorTest, ASwitchEndsOneSessionAndBeginsTheNext) {
  workspace_.frontmost = kEditor;
  workspace_.title = "notes";
  monitor_->start();
  loop_.advance(7);
  workspace_.title = "news";
  workspace_.activate(kBrowser);
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|notes|1000|1007", "Browser|org.browser|NULL|1007|NULL"}));
  loop_.advance(5);
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|notes|1000|1007", "Browser|org.browser|news|1007|NULL"}));
}

TEST_F(ActivityMonitorTest, ReadsTheClockAgainForTheSessionThatBegins) {
  const TickingClock clock;
  monitor_.emplace(database_, clock, workspace_, loop_);
  workspace_.frontmost = kEditor;
  monitor_->start();
  workspace_.activate(kBrowser);
  monitor_->stop();
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|NULL|1001|1002", "Browser|org.browser|NULL|1003|1004"}));
}

TEST_F(ActivityMonitorTest, AnActivationWithoutAnApplicationOnlyEndsTheSession) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  clock_.advance(4);
  workspace_.activate(std::nullopt);
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1000|1004"}));
  clock_.advance(4);
  workspace_.activate(std::nullopt);
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1000|1004"}));
  workspace_.activate(kEditor);
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|NULL|1000|1004", "Editor|org.editor|NULL|1008|NULL"}));
}

TEST_F(ActivityMonitorTest, AnApplicationThatActivatesAgainGetsAnotherSession) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  clock_.advance(1);
  workspace_.activate(kEditor);
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|NULL|1000|1001", "Editor|org.editor|NULL|1001|NULL"}));
}

TEST_F(ActivityMonitorTest, RecordsWhatIsKnownOfAnApplication) {
  monitor_->start();
  workspace_.activate(kEditor);
  workspace_.activate(RunningApplication{"", std::nullopt, std::nullopt});
  workspace_.activate(RunningApplication{});
  monitor_->stop();
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1000|1000", "|NULL|NULL|1000|1000",
                              "Unknown|NULL|NULL|1000|1000"}));
}

TEST_F(ActivityMonitorTest, AnApplicationWithoutADisplayNameIsUnknown) {
  monitor_->start();
  workspace_.activate(RunningApplication{std::nullopt, "org.hidden", 1});
  EXPECT_EQ(sessions(), (Rows{"Unknown|org.hidden|NULL|1000|NULL"}));
}

TEST_F(ActivityMonitorTest, StopEndsTheSessionOnce) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  workspace_.calls.clear();
  clock_.advance(2);
  monitor_->stop();
  EXPECT_EQ(workspace_.calls, (Calls{"remove observer"}));
  EXPECT_EQ(workspace_.observerCount(), 0U);
  EXPECT_TRUE(loop_.timerIntervals().empty());
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1000|1002"}));

  clock_.advance(2);
  monitor_->stop();
  workspace_.activate(kBrowser);
  loop_.advance(20);
  EXPECT_EQ(workspace_.calls, (Calls{"remove observer"}));
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1000|1002"}));
}

TEST_F(ActivityMonitorTest, StopWithoutASessionWritesNothing) {
  monitor_->start();
  monitor_->stop();
  EXPECT_EQ(workspace_.observerCount(), 0U);
  EXPECT_EQ(sessions(), Rows{});
}

TEST_F(ActivityMonitorTest, CanBeStartedAgainAfterAStop) {
  workspace_.frontmost = kEditor;
  workspace_.title = "notes";
  monitor_->start();
  loop_.advance(5);
  monitor_->stop();
  clock_.advance(10);
  monitor_->start();
  loop_.advance(5);
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|notes|1000|1005", "Editor|org.editor|notes|1015|NULL"}));
}

TEST_F(ActivityMonitorTest, TheLastTitleOutlivesAStopUntilASessionBegins) {
  workspace_.frontmost = kEditor;
  workspace_.title = "notes";
  monitor_->start();
  loop_.advance(5);
  monitor_->stop();
  sql_.run("ALTER TABLE activities RENAME TO away");
  monitor_->start();  // its insert fails and leaves the last title as it was
  sql_.run("ALTER TABLE away RENAME TO activities");
  loop_.advance(5);
  workspace_.activate(kBrowser);  // this one succeeds and forgets the title
  loop_.advance(5);
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|notes|1000|1005", "Browser|org.browser|notes|1010|NULL"}));
}

TEST_F(ActivityMonitorTest, DestructionStops) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  clock_.advance(2);
  monitor_.reset();
  EXPECT_EQ(workspace_.observerCount(), 0U);
  EXPECT_TRUE(loop_.timerIntervals().empty());
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1000|1002"}));
}

TEST_F(ActivityMonitorTest, ASecondStartLeavesTheFirstRegistrationAndTimerRunning) {
  monitor_->start();
  monitor_->start();
  EXPECT_EQ(workspace_.observerCount(), 2U);
  EXPECT_EQ(loop_.timerIntervals(), (std::vector<double>{5.0, 5.0}));
  workspace_.activate(kEditor);
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|NULL|1000|1000", "Editor|org.editor|NULL|1000|NULL"}));

  monitor_->stop();
  EXPECT_EQ(workspace_.observerCount(), 1U);
  EXPECT_EQ(loop_.timerIntervals(), std::vector<double>{5.0});
  workspace_.activate(kBrowser);
  EXPECT_EQ(sessions().size(), 3U) << "the first registration still records";
}

TEST_F(ActivityMonitorTest, WhatIsLeftRegisteredDoesNothingOnceTheMonitorIsGone) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  monitor_->start();
  monitor_.reset();
  ASSERT_EQ(workspace_.observerCount(), 1U);
  const Rows before = sessions();
  workspace_.activate(kBrowser);
  loop_.advance(20);
  EXPECT_EQ(sessions(), before);
}

TEST_F(ActivityMonitorTest, AFailedInsertLeavesNoSessionUntilTheNextActivation) {
  monitor_->start();
  sql_.run("BEGIN EXCLUSIVE");
  workspace_.activate(kEditor);
  sql_.run("COMMIT");
  workspace_.title = "notes";
  workspace_.calls.clear();
  loop_.advance(5);
  EXPECT_EQ(workspace_.calls, Calls{});
  EXPECT_EQ(sessions(), Rows{});
  workspace_.activate(kBrowser);
  EXPECT_EQ(sessions(), (Rows{"Browser|org.browser|NULL|1005|NULL"}));
}

TEST_F(ActivityMonitorTest, ASessionThatCouldNotBeEndedIsLeftOpen) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  sql_.run("BEGIN EXCLUSIVE");
  workspace_.activate(std::nullopt);
  sql_.run("COMMIT");
  workspace_.activate(kBrowser);
  monitor_->stop();
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|NULL|1000|NULL", "Browser|org.browser|NULL|1000|1000"}));
}

TEST_F(ActivityMonitorTest, ATitleThatCouldNotBeWrittenIsNotTriedAgain) {
  workspace_.frontmost = kEditor;
  workspace_.title = "notes";
  monitor_->start();
  sql_.run("BEGIN EXCLUSIVE");
  loop_.advance(5);
  sql_.run("COMMIT");
  loop_.advance(5);
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1000|NULL"}));
  workspace_.title = "more notes";
  loop_.advance(5);
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|more notes|1000|NULL"}));
}

TEST_F(ActivityMonitorTest, StopDropsAFailureToo) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  sql_.run("BEGIN EXCLUSIVE");
  EXPECT_NO_THROW(monitor_.reset());
  sql_.run("COMMIT");
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1000|NULL"}));
}

TEST_F(ActivityMonitorTest, ASessionThatACrashLeftOpenStaysOpen) {
  database_->insert({.id = {},
                     .appName = "Lost",
                     .bundleID = {},
                     .title = {},
                     .startTime = {500},
                     .endTime = {}});
  workspace_.frontmost = kEditor;
  monitor_->start();
  monitor_->stop();
  EXPECT_EQ(sessions(), (Rows{"Lost|NULL|NULL|500|NULL", "Editor|org.editor|NULL|1000|1000"}));
}

}  // namespace
}  // namespace tessum
