#include "tests/monitor/activity_monitor_fixture.h"

namespace tessum {
namespace {

TEST_F(ActivityMonitorTest, ThePollWritesTheTitleOfTheFrontmostApplicationEveryFiveSeconds) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  workspace_.calls.clear();
  workspace_.title = "  notes ";
  loop_.advance(4.9);
  EXPECT_EQ(workspace_.calls, Calls{});
  loop_.advance(0.1);
  EXPECT_EQ(workspace_.calls, (Calls{"frontmost application", "title of Editor"}));
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|  notes |1000|NULL"}));
  loop_.advance(10);
  EXPECT_EQ(workspace_.calls.size(), 6U);
}

TEST_F(ActivityMonitorTest, ANewTitleReplacesTheOldOneInTheSameSession) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  for (const char* title : {"one", "two", "three"}) {
    workspace_.title = title;
    loop_.advance(5);
    EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|" + std::string(title) + "|1000|NULL"}));
  }
}

TEST_F(ActivityMonitorTest, ATitleThatStaysIsWrittenOnce) {
  workspace_.frontmost = kEditor;
  workspace_.title = "notes";
  monitor_->start();
  loop_.advance(5);
  sql_.run("UPDATE activities SET title = 'changed by hand'");
  loop_.advance(20);
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|changed by hand|1000|NULL"}));
}

TEST_F(ActivityMonitorTest, ATitleThatGoesAndComesBackIsWrittenAgain) {
  for (const std::optional<std::string>& gone : {std::optional<std::string>(""), {}}) {
    sql_.run("DELETE FROM activities");
    workspace_.frontmost = kEditor;
    workspace_.title = "notes";
    monitor_.emplace(database_, clock_, workspace_, loop_);
    monitor_->start();
    loop_.advance(5);
    workspace_.title = gone;
    sql_.run("UPDATE activities SET title = 'first'");
    loop_.advance(5);
    EXPECT_EQ(sql_.row("SELECT title FROM activities"), "first") << "a title is never cleared";
    workspace_.title = "notes";
    loop_.advance(5);
    EXPECT_EQ(sql_.row("SELECT title FROM activities"), "notes");
  }
}

TEST_F(ActivityMonitorTest, WithoutPermissionForTitlesSessionsAreRecordedAllTheSame) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  loop_.advance(30);
  workspace_.activate(kBrowser);
  loop_.advance(30);
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|NULL|1000|1030", "Browser|org.browser|NULL|1030|NULL"}));
}

TEST_F(ActivityMonitorTest, ThePollDoesNothingWithoutASession) {
  monitor_->start();
  workspace_.frontmost = kEditor;
  workspace_.calls.clear();
  loop_.advance(20);
  EXPECT_EQ(workspace_.calls, Calls{});
}

TEST_F(ActivityMonitorTest, ThePollDoesNothingWhenNoApplicationIsInFront) {
  workspace_.frontmost = kEditor;
  workspace_.title = "notes";
  monitor_->start();
  workspace_.frontmost.reset();
  workspace_.calls.clear();
  loop_.advance(5);
  EXPECT_EQ(workspace_.calls, (Calls{"frontmost application"}));
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|NULL|1000|NULL"}));
}

TEST_F(ActivityMonitorTest, TheTitleGoesIntoTheOpenSessionWhateverIsInFront) {
  workspace_.frontmost = kEditor;
  monitor_->start();
  workspace_.frontmost = kBrowser;  // its activation has not been told yet
  workspace_.title = "news";
  loop_.advance(5);
  EXPECT_EQ(sessions(), (Rows{"Editor|org.editor|news|1000|NULL"}));
}

TEST_F(ActivityMonitorTest, TheNextSessionGetsATitleThatTheLastOneHad) {
  workspace_.frontmost = kEditor;
  workspace_.title = "same";
  monitor_->start();
  loop_.advance(5);
  workspace_.activate(kBrowser);
  loop_.advance(5);
  EXPECT_EQ(sessions(),
            (Rows{"Editor|org.editor|same|1000|1005", "Browser|org.browser|same|1005|NULL"}));
}

}  // namespace
}  // namespace tessum
