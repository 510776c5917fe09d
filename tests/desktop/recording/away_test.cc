#include "desktop/recording/away.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/fakes/fake_steady_clock.h"

namespace tessum {
namespace {

using Told = std::vector<std::string>;

class AwayTest : public testing::Test {
 protected:
  AwayTest() { clock_.set({1000}); }

  [[nodiscard]] Moment now() const { return steady_.now(); }

  // Reports five minutes without input.
  void idle() {
    const Moment lastInput = now();
    loop_.advance(300);
    away_.noteIdle(lastInput);
  }

  void tell(const char* what, Moment moment) {
    told_.push_back(what + std::to_string(static_cast<long>(moment.seconds)));
  }

  FakeClock clock_;
  FakeSteadyClock steady_{clock_};
  FakeMainLoop loop_{clock_};
  Told told_;
  Away away_{loop_,
             steady_,
             300.0,
             {.onAway = [this](Moment since) { tell("away ", since); },
              .onBack = [this](Moment when) { tell("back ", when); }}};
};

TEST_F(AwayTest, CountsFromTheLastInputToTheNext) {
  idle();
  loop_.advance(100);
  away_.noteInput(now());
  EXPECT_EQ(told_, (Told{"away 1000", "back 1400"}));
}

TEST_F(AwayTest, LockedIsAwayAtOnce) {
  away_.noteLock(true, now());
  EXPECT_EQ(away_.since(), now());
  away_.noteLock(true, movedBy(now(), 1));  // reported twice
  loop_.advance(10);
  away_.noteLock(false, now());
  EXPECT_EQ(told_, (Told{"away 1000", "back 1010"}));
}

TEST_F(AwayTest, LockedWhileUntouchedLastsUntilItIsUnlocked) {
  idle();
  away_.noteLock(true, now());
  loop_.advance(10);
  away_.noteInput(now());
  EXPECT_EQ(told_, Told{"away 1000"}) << "input at the lock screen";
  loop_.advance(5);
  away_.noteLock(false, now());
  EXPECT_EQ(told_, (Told{"away 1000", "back 1315"}));
}

TEST_F(AwayTest, UnlockedWithoutInputLastsUntilThereIsSome) {
  away_.noteLock(true, now());
  idle();
  away_.noteLock(false, now());
  loop_.advance(7);
  away_.noteInput(now());
  EXPECT_EQ(told_, (Told{"away 1000", "back 1307"}));
}

TEST_F(AwayTest, AsleepWhileLockedLastsUntilItIsUnlocked) {
  away_.noteLock(true, now());
  loop_.advance(1);
  away_.noteSleep(now());
  loop_.advance(1000);
  away_.noteWakeUp(now());
  EXPECT_EQ(told_, Told{"away 1000"});
  loop_.advance(3);
  away_.noteLock(false, now());
  EXPECT_EQ(told_, (Told{"away 1000", "back 2004"}));
}

TEST_F(AwayTest, SleepAloneLastsUntilItIsAwake) {
  away_.noteSleep(now());
  loop_.advance(60);
  away_.noteWakeUp(now());
  EXPECT_EQ(told_, (Told{"away 1000", "back 1060"}));
}

TEST_F(AwayTest, WhileSomethingKeepsTheScreenAwakeNobodyIsAway) {
  away_.noteKeptAwake(true, now());
  idle();
  loop_.advance(3600);
  EXPECT_EQ(told_, Told());
  const Moment end = now();
  away_.noteKeptAwake(false, end);
  loop_.advance(299);
  EXPECT_EQ(told_, Told()) << "the user may have watched to the end";
  loop_.advance(1);
  EXPECT_EQ(told_, Told{"away 4900"});
  EXPECT_EQ(away_.since(), end);
}

TEST_F(AwayTest, InputAfterSomethingKeptTheScreenAwakeIsNoReturn) {
  away_.noteKeptAwake(true, now());
  idle();
  away_.noteKeptAwake(false, now());
  loop_.advance(20);
  away_.noteInput(now());
  loop_.advance(1000);
  EXPECT_EQ(told_, Told());
}

TEST_F(AwayTest, ALockCountsWhateverKeepsTheScreenAwake) {
  away_.noteKeptAwake(true, now());
  away_.noteLock(true, now());
  EXPECT_EQ(told_, Told{"away 1000"});
}

TEST_F(AwayTest, WithoutALimitOnlyLockAndSleepCount) {
  Told told;
  Away away(loop_, steady_, std::nullopt,
            {.onAway = [&](Moment) { told.emplace_back("away"); },
             .onBack = [&](Moment) { told.emplace_back("back"); }});
  away.noteIdle(now());
  loop_.advance(10000);
  EXPECT_EQ(told, Told());
  away.noteLock(true, now());
  EXPECT_EQ(told, Told{"away"});
}

}  // namespace
}  // namespace tessum
