#include "core/workspace/linux/front_tracker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/fakes/fake_main_loop.h"

namespace tessum {
namespace {

using Told = std::vector<std::string>;

// The fake clock's seconds also serve as moments.
class FrontTrackerTest : public testing::Test {
 protected:
  static constexpr double kMoment = FrontTracker::kMomentWithoutWindow;

  static FrontWindow window(const std::string& application,
                            std::optional<std::string> title = std::nullopt) {
    return {.key = {.name = application, .process = {}, .window = 0},
            .application = {application, {}, {}},
            .title = std::move(title)};
  }

  static FrontWindow anonymous(std::uint32_t number) {
    return {.key = {.name = "", .process = {}, .window = number}, .application = {}};
  }

  void show(const std::optional<FrontWindow>& window) { tracker_.show(window, now()); }

  [[nodiscard]] Moment now() const { return {clock_.now().secondsSince1970}; }

  // The reports since the last call, such as "a 'title' @3".
  [[nodiscard]] Told told() { return std::exchange(told_, {}); }

  void tell(const std::optional<Front>& front, Moment since) {
    std::string text = front ? front->application.localizedName.value_or("?") : "none";
    if (front && front->title) text += " '" + *front->title + "'";
    std::ostringstream line;
    line << text << " @" << since.seconds;
    told_.push_back(line.str());
  }

  FakeClock clock_;
  FakeMainLoop loop_{clock_};
  Told told_;
  FrontTracker tracker_{loop_,
                        [this](const auto& front, Moment since) { this->tell(front, since); }};
};

TEST_F(FrontTrackerTest, TellsOfEachApplicationThatComes) {
  show(window("a"));
  loop_.advance(1);
  show(window("b", "title"));
  loop_.advance(1);
  show(window("a"));
  EXPECT_EQ(told(), (Told{"a @0", "b 'title' @1", "a @2"}));
}

TEST_F(FrontTrackerTest, TellsOfATitleOnlyWhenItDiffers) {
  show(window("a", "one"));
  show(window("a", "one"));
  loop_.advance(1);
  show(window("a", "two"));
  show(window("a", "two"));
  show(window("a"));
  EXPECT_EQ(told(), (Told{"a 'one' @0", "a 'two' @1", "a @1"}));
}

TEST_F(FrontTrackerTest, AnotherWindowOfTheApplicationIsAnotherTitle) {
  show(window("a", "first window"));
  auto second = window("a", "second window");
  second.application.localizedName = "A, as the second window calls it";
  show(second);
  EXPECT_EQ(told(), (Told{"a 'first window' @0", "a 'second window' @0"}));
  show(window("a", "second window"));
  EXPECT_EQ(told(), Told{}) << "the application keeps what it was first told as";
}

TEST_F(FrontTrackerTest, AMomentWithoutAWindowIsNothing) {
  show(window("a"));
  show(std::nullopt);
  loop_.advance(kMoment - 0.1);
  show(window("a"));
  loop_.advance(10);
  show(std::nullopt);
  show(window("b"));
  loop_.advance(10);
  EXPECT_EQ(told(), (Told{"a @0", "b @10.4"}));
  EXPECT_TRUE(loop_.timerIntervals().empty());
}

TEST_F(FrontTrackerTest, ATitleThatChangedInThatMomentIsTold) {
  show(window("a", "one"));
  show(std::nullopt);
  loop_.advance(kMoment / 2);
  show(window("a", "two"));
  EXPECT_EQ(told(), (Told{"a 'one' @0", "a 'two' @0.25"}));
}

TEST_F(FrontTrackerTest, ALongerTimeWithoutAWindowCountsFromItsBeginning) {
  show(window("a"));
  loop_.advance(1);
  show(std::nullopt);
  loop_.advance(kMoment / 2);
  show(std::nullopt);  // does not restart the delay
  EXPECT_EQ(told(), Told{"a @0"});
  loop_.advance(kMoment / 2);
  EXPECT_EQ(told(), Told{"none @1"});
  loop_.advance(10);
  show(std::nullopt);
  loop_.advance(10);
  show(window("a"));
  EXPECT_EQ(told(), Told{"a @21.5"});
}

TEST_F(FrontTrackerTest, TellsAtOnceThatNothingIsInFrontAtFirst) {
  show(std::nullopt);
  EXPECT_EQ(told(), Told{"none @0"});
  show(std::nullopt);
  EXPECT_TRUE(loop_.timerIntervals().empty());
  tracker_.clear(now());
  EXPECT_EQ(told(), Told{});
}

TEST_F(FrontTrackerTest, AnAnonymousWindowIsNothingForAMoment) {
  show(window("a"));
  loop_.advance(1);
  show(anonymous(1));
  loop_.advance(kMoment - 0.1);
  show(window("a"));
  loop_.advance(10);
  EXPECT_EQ(told(), Told{"a @0"});
}

TEST_F(FrontTrackerTest, AnAnonymousWindowThatStaysIsAnApplicationFromItsBeginning) {
  show(window("a"));
  loop_.advance(1);
  show(anonymous(1));
  loop_.advance(kMoment / 2);
  auto titled = anonymous(1);
  titled.title = "title";
  show(titled);
  EXPECT_EQ(told(), Told{"a @0"});
  loop_.advance(kMoment / 2);
  EXPECT_EQ(told(), Told{"? 'title' @1"});
  titled.title = "other";
  show(titled);
  EXPECT_EQ(told(), Told{"? 'other' @1.5"}) << "once it counts, so do its titles";
}

TEST_F(FrontTrackerTest, AnAnonymousWindowAtFirstIsNothingForAMoment) {
  show(anonymous(1));
  EXPECT_EQ(told(), Told{"none @0"});
  loop_.advance(kMoment);
  EXPECT_EQ(told(), Told{"? @0"});
}

TEST_F(FrontTrackerTest, AnAnonymousWindowAfterNothingGetsAMomentOfItsOwn) {
  show(window("a"));
  show(std::nullopt);
  loop_.advance(0.4);
  show(anonymous(1));
  loop_.advance(0.1);
  EXPECT_EQ(told(), (Told{"a @0", "none @0"}));
  loop_.advance(kMoment);
  EXPECT_EQ(told(), Told{"? @0.4"});
}

TEST_F(FrontTrackerTest, OfAnonymousWindowsOnlyTheOneThatStaysCounts) {
  show(window("a"));
  for (std::uint32_t number = 1; number <= 4; ++number) {
    show(anonymous(number));
    loop_.advance(0.1);
  }
  loop_.advance(10);
  EXPECT_EQ(told(), (Told{"a @0", "none @0", "? @0.3"}));
  show(anonymous(5));
  loop_.advance(kMoment);
  EXPECT_EQ(told(), Told{"? @10.4"}) << "each is an application";
}

TEST_F(FrontTrackerTest, AnAnonymousWindowThatGoesAfterNothingIsNothing) {
  show(std::nullopt);
  show(anonymous(1));
  show(std::nullopt);
  loop_.advance(10);
  EXPECT_EQ(told(), Told{"none @0"});
  EXPECT_TRUE(loop_.timerIntervals().empty());
}

TEST_F(FrontTrackerTest, ClearingTellsAtOnceAndOnce) {
  show(window("a"));
  loop_.advance(1);
  show(std::nullopt);
  loop_.advance(kMoment / 2);
  tracker_.clear(now());
  tracker_.clear(now());
  loop_.advance(10);
  EXPECT_EQ(told(), (Told{"a @0", "none @1"}));
  show(window("a"));
  tracker_.clear(now());
  EXPECT_EQ(told(), (Told{"a @11.25", "none @11.25"}));
}

TEST_F(FrontTrackerTest, LeavesNoTimerBehind) {
  {
    FrontTracker tracker(loop_, [](const auto&, Moment) {});
    tracker.show(window("a"), now());
    tracker.show(std::nullopt, now());
    EXPECT_EQ(loop_.timerIntervals().size(), 1U);
  }
  EXPECT_TRUE(loop_.timerIntervals().empty());
}

}  // namespace
}  // namespace tessum
