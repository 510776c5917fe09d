#include "core/workspace/x11/server_time.h"

#include <gtest/gtest.h>

#include "tests/support/fakes/fake_steady_clock.h"

namespace tessum {
namespace {

constexpr double kStampTolerance = 1e-4;  // in seconds, below the millisecond of a stamp

// The server's clock is `offset_` ahead of the seconds that our clock has been awake.
class ServerTime : public testing::Test {
 protected:
  // The stamp of what happens now.
  [[nodiscard]] std::uint32_t stamp() const {
    const double awake = clock_.now().seconds - clock_.secondsAsleep();
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>((awake + offset_) * 1000 + 0.5));
  }

  double momentOf(std::uint32_t stamp) { return time_.ofEvent(stamp).seconds; }

  FakeClock wall_{{1000}};
  FakeSteadyClock clock_{wall_};
  double offset_ = 12345;
  X11ServerTime time_{clock_};
};

TEST_F(ServerTime, AnEventCountsFromItsStampOnceAFastOneHasBeenSeen) {
  EXPECT_NEAR(momentOf(stamp()), 1000, kStampTolerance);
  wall_.advance(10);
  const auto late = stamp();
  wall_.advance(3);
  EXPECT_NEAR(momentOf(late), 1010, kStampTolerance);
}

TEST_F(ServerTime, TheFastestEventDecides) {
  const auto first = stamp();
  wall_.advance(2);
  EXPECT_NEAR(momentOf(first), 1002, kStampTolerance) << "nothing faster is known";
  wall_.advance(10);
  const auto second = stamp();
  wall_.advance(0.5);
  EXPECT_NEAR(momentOf(second), 1012.5, kStampTolerance) << "this is the fastest so far";
  wall_.advance(10);
  const auto third = stamp();
  wall_.advance(1);
  EXPECT_NEAR(momentOf(third), 1023, kStampTolerance) << "half a second later than the fastest";
}

TEST_F(ServerTime, StampsStartAgainAtZero) {
  constexpr double kWrap = 4294967.296;
  offset_ = kWrap - 1000 - 5;
  EXPECT_NEAR(momentOf(stamp()), 1000, kStampTolerance);
  const auto before = stamp();
  wall_.advance(10);
  const auto after = stamp();
  ASSERT_LT(after, before);
  wall_.advance(2);
  EXPECT_NEAR(momentOf(after), 1010, kStampTolerance);
  wall_.advance(3.5 * kWrap);
  const auto muchLater = stamp();
  wall_.advance(2);
  EXPECT_NEAR(momentOf(muchLater), 1012 + 3.5 * kWrap, kStampTolerance);
}

TEST_F(ServerTime, SleepIsNoDelay) {
  EXPECT_NEAR(momentOf(stamp()), 1000, kStampTolerance);
  wall_.advance(8 * 3600);
  clock_.sleep(8 * 3600);
  const auto awakeAgain = stamp();
  wall_.advance(2);
  EXPECT_NEAR(momentOf(awakeAgain), 1000 + 8 * 3600, kStampTolerance);
}

TEST_F(ServerTime, NoMomentIsBeforeAnEarlierOneOrInTheFuture) {
  const auto early = stamp();
  EXPECT_NEAR(momentOf(early), 1000, kStampTolerance);
  wall_.advance(10);
  EXPECT_EQ(time_.present().seconds, 1010);
  EXPECT_EQ(momentOf(early), 1010) << "it was received after the present was told";
  wall_.advance(10);
  EXPECT_EQ(momentOf(stamp() + 60'000), 1020) << "the server has set its clock";
  wall_.advance(10);
  EXPECT_EQ(momentOf(stamp()), 1020) << "the server has set it back";
}

}  // namespace
}  // namespace tessum
