#include "desktop/recording/recording.h"

#include <gtest/gtest.h>

#include "tests/desktop/recording/written_sessions.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/fakes/fake_steady_clock.h"

namespace tessum {
namespace {

using Rows = std::vector<std::string>;

// The wall clock, which can be set.
class SettableClock final : public Clock {
 public:
  explicit SettableClock(const FakeClock& clock) : clock_(clock) {}
  [[nodiscard]] Date now() const override { return movedBy(clock_.now(), ahead); }

  double ahead = 0;

 private:
  const FakeClock& clock_;
};

class RecordingTest : public testing::Test {
 protected:
  [[nodiscard]] Moment now() const { return steady_.now(); }
  void show(const char* app) {
    recording_.show(Front{{app, std::nullopt, std::nullopt}, std::nullopt}, now());
  }

  // Advances the time, with the ticks.
  void wait(double seconds) {
    for (; seconds > 0; seconds -= Recording::kTickSeconds) {
      loop_.advance(std::min(seconds, Recording::kTickSeconds));
      recording_.tick();
    }
  }

  FakeClock clock_;
  FakeSteadyClock steady_{clock_};
  FakeMainLoop loop_{clock_};
  SettableClock wall_{clock_};
  std::shared_ptr<WrittenSessions> written_ = std::make_shared<WrittenSessions>();
  int awayChanges_ = 0;
  Recording recording_{written_, wall_, steady_, loop_, {}, [this] { ++awayChanges_; }};
};

TEST_F(RecordingTest, EndsAtTheLastInputAndBeginsWithTheNext) {
  show("Editor");
  wait(60);
  const Moment lastInput = now();
  wait(300);
  recording_.away().noteIdle(lastInput);
  EXPECT_EQ(recording_.awaySince(), Date{60});
  wait(1000);
  recording_.away().noteInput(now());
  EXPECT_EQ(recording_.awaySince(), std::nullopt);
  EXPECT_EQ(written_->rows(), (Rows{"Editor|-|0|60", "Editor|-|1360|open"}));
  EXPECT_EQ(awayChanges_, 2);
}

TEST_F(RecordingTest, WhatComesToTheFrontWhileAwayBeginsWithTheReturn) {
  show("Editor");
  wait(10);
  recording_.away().noteLock(true, now());
  wait(10);
  show("Mail");
  wait(10);
  recording_.away().noteLock(false, now());
  EXPECT_EQ(written_->rows(), (Rows{"Editor|-|0|10", "Mail|-|30|open"}));
}

TEST_F(RecordingTest, ASleepThatNobodyAnnouncedIsNoticedAfterwards) {
  show("Editor");
  wait(20);
  loop_.advance(3600);
  steady_.sleep(3600);
  recording_.tick();
  wait(10);
  recording_.stop();
  EXPECT_EQ(written_->rows(), (Rows{"Editor|-|0|20", "Editor|-|3620|3630"}));
}

TEST_F(RecordingTest, ASleepThatWasAnnouncedCountsOnce) {
  show("Editor");
  wait(20);
  recording_.noteSleep(now());
  loop_.advance(3600);
  steady_.sleep(3600);
  recording_.noteWakeUp(now());
  wait(10);
  recording_.stop();
  EXPECT_EQ(written_->rows(), (Rows{"Editor|-|0|20", "Editor|-|3620|3630"}));
}

TEST_F(RecordingTest, AClockSetBackEndsNoSessionBeforeItBegan) {
  wall_.ahead = 7200;
  recording_.tick();
  show("Editor");
  wait(60);
  wall_.ahead = 3600;
  show("Mail");
  wait(60);
  recording_.stop();
  EXPECT_EQ(written_->rows(), (Rows{"Editor|-|7200|7260", "Mail|-|3660|3720"}));
}

TEST_F(RecordingTest, AClockSetForwardMakesNoSessionLonger) {
  show("Editor");
  wait(60);
  wall_.ahead = 86400;
  wait(60);
  recording_.stop();
  EXPECT_EQ(written_->rows(), (Rows{"Editor|-|0|65", "Editor|-|86465|86520"}));
}

TEST_F(RecordingTest, AClockThatIsCorrectedGraduallyIsFollowedWithoutACut) {
  show("Editor");
  wall_.ahead = 0.4;
  wait(60);
  recording_.stop();
  EXPECT_EQ(written_->rows(), Rows{"Editor|-|0|60"});
}

}  // namespace
}  // namespace tessum
