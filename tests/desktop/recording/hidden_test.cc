// What a recording leaves out, and when.

#include <gtest/gtest.h>

#include "desktop/recording/recording_options.h"
#include "desktop/settings/settings_reader.h"
#include "tests/desktop/recording/written_sessions.h"
#include "tests/support/environment.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/fakes/fake_steady_clock.h"

namespace tessum {
namespace {

using Rows = std::vector<std::string>;

RecordingSettings settingsOf(const std::string& text) {
  return recordingSettings(readSettings(text), {});
}

class HiddenTest : public testing::Test {
 protected:
  [[nodiscard]] Moment now() const { return steady_.now(); }

  void show(const char* app, const char* title = nullptr) {
    Front front{{app, std::nullopt, std::nullopt}, std::nullopt};
    if (title != nullptr) front.title = title;
    recording_.show(front, now());
  }
  void wait(double seconds) { loop_.advance(seconds); }

  const ScopedVariable zone_{"TZ", "UTC"};
  FakeClock clock_;
  FakeSteadyClock steady_{clock_};
  FakeMainLoop loop_{clock_};
  std::shared_ptr<WrittenSessions> written_ = std::make_shared<WrittenSessions>();
  Recording recording_{written_, clock_, steady_, loop_, {}, [] {}};
};

TEST_F(HiddenTest, AHiddenApplicationIsAsIfNothingWereInFront) {
  recording_.obey(settingsOf("[[hide]]\napp='Vault'"));
  show("Editor");
  wait(10);
  show("Vault", "Passwords");
  wait(10);
  show("Editor");
  EXPECT_EQ(written_->rows(), (Rows{"Editor|-|0|10", "Editor|-|20|open"}));
}

TEST_F(HiddenTest, ATitleThatBecomesHiddenEndsTheSession) {
  recording_.obey(settingsOf("[[hide]]\ntitle='Secret'"));
  show("Editor", "Plan");
  wait(10);
  show("Editor", "Secret plan");
  wait(10);
  show("Editor", "Plan");
  wait(10);
  EXPECT_EQ(written_->rows(), (Rows{"Editor|Plan|0|10", "Editor|Plan|20|open"}));
}

// Even if a short title would otherwise join the previous session.
TEST_F(HiddenTest, AKeptApplicationHasASessionWithoutTitle) {
  recording_.obey(settingsOf("[[hide]]\ntitle='Secret'\nkeep='app'"));
  show("Editor", "Plan");
  wait(1);
  show("Editor", "Secret plan");
  wait(1);
  show("Editor", "Other");
  wait(10);
  EXPECT_EQ(written_->rows(), (Rows{"Editor|Plan|0|1", "Editor|-|1|2", "Editor|Other|2|open"}));
}

TEST_F(HiddenTest, ATitleThatOnlyWaitsForItsSessionIsNotLost) {
  recording_.obey(settingsOf("[[hide]]\ntitle='Secret'"));
  show("Editor", "Plan");
  wait(10);
  show("Editor", "Secret one");
  wait(2);
  show("Editor", "Secret two");
  wait(10);
  recording_.tick();
  recording_.stop();
  EXPECT_EQ(written_->rows(), Rows{"Editor|Plan|0|10"});
}

TEST_F(HiddenTest, RulesThatChangeAreObeyedAtOnce) {
  show("Editor", "Plan");
  wait(10);
  recording_.obey(settingsOf("[[hide]]\napp='Editor'"));
  wait(10);
  recording_.obey(settingsOf("[[hide]]\ntitle='Plan'\nkeep='app'"));
  wait(10);
  recording_.obey(settingsOf(""));
  wait(10);
  EXPECT_EQ(written_->rows(), (Rows{"Editor|Plan|0|10", "Editor|-|20|30", "Editor|Plan|30|open"}));
}

TEST_F(HiddenTest, ASettingOfTitlesThatChangesHoldsFromTheNextOneOn) {
  show("Editor", "Plan");
  wait(10);
  recording_.obey(settingsOf("[record]\ntitles='none'"));
  wait(10);
  show("Mail", "Inbox");
  EXPECT_EQ(written_->rows().back(), "Mail|-|20|open");
}

TEST_F(HiddenTest, ASchedulesEdgesAreKeptWithoutATick) {
  recording_.obey(settingsOf("[[hide]]\nbetween='00:01-00:02'"));
  show("Editor");
  wait(86400 + 90);
  EXPECT_EQ(written_->rows(), (Rows{"Editor|-|0|60", "Editor|-|120|86460"}));
}

TEST_F(HiddenTest, APauseEndsByItself) {
  show("Editor");
  wait(10);
  recording_.pause(Pause{Date{30}});
  wait(10);
  show("Mail");
  wait(30);
  EXPECT_EQ(written_->rows(), (Rows{"Editor|-|0|10", "Mail|-|30|open"}));
}

TEST_F(HiddenTest, APauseWithoutEndIsEnded) {
  recording_.pause(Pause{});
  show("Editor");
  wait(1e6);
  recording_.pause(std::nullopt);
  EXPECT_EQ(written_->rows(), Rows{"Editor|-|1000000|open"});
}

TEST_F(HiddenTest, AnEdgeWhileTheUserIsAwayBeginsNothing) {
  recording_.obey(settingsOf("[[hide]]\nbetween='00:01-00:02'"));
  show("Editor");
  wait(30);
  recording_.away().noteLock(true, now());
  wait(100);
  recording_.away().noteLock(false, now());
  EXPECT_EQ(written_->rows(), (Rows{"Editor|-|0|30", "Editor|-|130|open"}));
}

TEST_F(HiddenTest, AReturnDuringAScheduleBeginsNothing) {
  recording_.obey(settingsOf("[[hide]]\nbetween='00:01-00:02'"));
  show("Editor");
  wait(30);
  recording_.away().noteLock(true, now());
  wait(60);
  recording_.away().noteLock(false, now());
  recording_.tick();
  EXPECT_EQ(written_->rows(), Rows{"Editor|-|0|30"});
}

TEST_F(HiddenTest, ALimitOfInputThatChangesHoldsForTheNextTimeAway) {
  show("Editor");
  wait(300);
  recording_.away().noteIdle(Moment{0});
  ASSERT_TRUE(recording_.awaySince());
  recording_.obey(settingsOf("[record]\naway-after='never'"));
  EXPECT_FALSE(recording_.awaySince());
  recording_.away().noteIdle(now());
  wait(1000);
  EXPECT_FALSE(recording_.awaySince());
}

TEST(RecordingOptions, WinOverTheSettings) {
  const Settings settings = readSettings("[record]\naway-after='10m'\ntitles='last'\n");
  const RecordingSettings asSet = recordingSettings(settings, {});
  EXPECT_EQ(asSet.awayAfter, 600);
  EXPECT_EQ(asSet.titles, Titles::last);
  const RecordingSettings asTold =
      recordingSettings(settings, {.awayAfter = AwayAfter{std::nullopt}, .titles = Titles::none});
  EXPECT_EQ(asTold.awayAfter, std::nullopt);
  EXPECT_EQ(asTold.titles, Titles::none);
}

}  // namespace
}  // namespace tessum
