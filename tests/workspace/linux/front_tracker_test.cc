#include "core/workspace/linux/front_tracker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/fake_main_loop.h"

namespace tessum {
namespace {

using Told = std::vector<std::string>;

class FrontTrackerTest : public testing::Test {
 protected:
  static FrontWindow window(std::uint32_t number, const std::string& application) {
    return {number, {.name = application, .process = {}, .window = 0}, {application, {}, {}}};
  }

  FakeClock clock_;
  FakeMainLoop loop_{clock_};
  Told told_;
  FrontTracker tracker_{loop_, [this](const std::optional<RunningApplication>& application) {
                          told_.push_back(application ? *application->localizedName : "none");
                        }};
};

TEST_F(FrontTrackerTest, TellsOfEachApplicationThatComes) {
  tracker_.show(window(1, "a"));
  tracker_.show(window(2, "b"));
  tracker_.show(window(1, "a"));
  EXPECT_EQ(told_, (Told{"a", "b", "a"}));
}

TEST_F(FrontTrackerTest, WindowsOfOneApplicationAreOneActivation) {
  tracker_.show(window(1, "a"));
  tracker_.show(window(2, "a"));
  tracker_.show(window(2, "a"));
  EXPECT_EQ(told_, Told{"a"});
  EXPECT_EQ(tracker_.current()->window, 2U) << "the title is that of the new window";
}

TEST_F(FrontTrackerTest, AMomentWithoutAWindowIsNothing) {
  tracker_.show(window(1, "a"));
  tracker_.show(std::nullopt);
  loop_.advance(FrontTracker::kMomentWithoutWindow - 0.1);
  EXPECT_EQ(tracker_.current()->window, 1U);
  tracker_.show(window(1, "a"));
  loop_.advance(10);
  tracker_.show(std::nullopt);
  tracker_.show(window(2, "b"));
  loop_.advance(10);
  EXPECT_EQ(told_, (Told{"a", "b"}));
  EXPECT_TRUE(loop_.timerIntervals().empty());
}

TEST_F(FrontTrackerTest, ALongerTimeWithoutAWindowIsAnActivationOfNone) {
  tracker_.show(window(1, "a"));
  tracker_.show(std::nullopt);
  loop_.advance(FrontTracker::kMomentWithoutWindow / 2);
  tracker_.show(std::nullopt);  // does not begin the moment anew
  loop_.advance(FrontTracker::kMomentWithoutWindow / 2);
  EXPECT_EQ(told_, (Told{"a", "none"}));
  EXPECT_FALSE(tracker_.current().has_value());
  loop_.advance(10);
  tracker_.show(window(1, "a"));
  EXPECT_EQ(told_, (Told{"a", "none", "a"}));
}

TEST_F(FrontTrackerTest, NothingAtFirstIsNoActivation) {
  tracker_.show(std::nullopt);
  tracker_.clear();
  EXPECT_TRUE(loop_.timerIntervals().empty());
  EXPECT_EQ(told_, Told{});
}

TEST_F(FrontTrackerTest, ClearingTellsAtOnceAndOnce) {
  tracker_.show(window(1, "a"));
  tracker_.show(std::nullopt);
  tracker_.clear();
  tracker_.clear();
  loop_.advance(10);
  EXPECT_EQ(told_, (Told{"a", "none"}));
}

TEST_F(FrontTrackerTest, LeavesNoTimerBehind) {
  {
    FrontTracker tracker(loop_, [](const auto&) {});
    tracker.show(window(1, "a"));
    tracker.show(std::nullopt);
    EXPECT_EQ(loop_.timerIntervals().size(), 1U);
  }
  EXPECT_TRUE(loop_.timerIntervals().empty());
}

}  // namespace
}  // namespace tessum
