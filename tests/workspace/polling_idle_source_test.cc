#include "core/workspace/polling_idle_source.h"

#include <gtest/gtest.h>

#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/fakes/fake_steady_clock.h"

namespace tessum {
namespace {

using TimedTold = std::vector<std::pair<std::string, double>>;

class PollingIdleSourceTest : public testing::Test {
 protected:
  void input() { lastInput_ = steadyClock_.now(); }

  // Handlers that record their calls as `name` and a sign.
  IdleSource::Handlers handlers(const std::string& name) {
    return {.onIdle = [this, name](Moment at) { told_.emplace_back(name + "-", at.seconds); },
            .onActive = [this, name](Moment at) { told_.emplace_back(name + "+", at.seconds); }};
  }

  FakeClock clock_{{1000}};
  FakeSteadyClock steadyClock_{clock_};
  FakeMainLoop loop_{clock_};
  std::optional<Moment> lastInput_ = Moment{1000};
  TimedTold told_;
  PollingIdleSource source_{loop_, steadyClock_, [this]() -> std::optional<double> {
                              if (!lastInput_) return std::nullopt;
                              return secondsBetween(*lastInput_, steadyClock_.now());
                            }};
};

TEST_F(PollingIdleSourceTest, TellsOfIdlenessSinceTheLastInputAndOfTheNextOne) {
  source_.watch(60, handlers("a"));
  loop_.advance(12);
  input();
  loop_.advance(59);
  EXPECT_EQ(told_, TimedTold{});
  loop_.advance(100);
  EXPECT_EQ(told_, (TimedTold{{"a-", 1012}}));
  input();  // at 1171
  loop_.advance(5);
  EXPECT_EQ(told_, (TimedTold{{"a-", 1012}, {"a+", 1171}}));
  loop_.advance(70);
  EXPECT_EQ(told_, (TimedTold{{"a-", 1012}, {"a+", 1171}, {"a-", 1171}}));
}

TEST_F(PollingIdleSourceTest, TellsOfIdlenessThatHasBegunBeforeTheWatch) {
  clock_.advance(300);
  source_.watch(60, handlers("a"));
  EXPECT_EQ(told_, TimedTold{}) << "the loop tells";
  loop_.advance(5);
  EXPECT_EQ(told_, (TimedTold{{"a-", 1000}}));
}

TEST_F(PollingIdleSourceTest, TheThresholdItselfIsIdle) {
  source_.watch(5, handlers("a"));
  loop_.advance(5);
  EXPECT_EQ(told_, (TimedTold{{"a-", 1000}}));
}

TEST_F(PollingIdleSourceTest, AnotherWatchBeginsAnew) {
  source_.watch(60, handlers("a"));
  loop_.advance(60);
  source_.watch(30, handlers("b"));
  loop_.advance(60);
  input();
  loop_.advance(5);
  EXPECT_EQ(told_, (TimedTold{{"a-", 1000}, {"b-", 1000}, {"b+", 1120}}));
  EXPECT_EQ(loop_.timerIntervals(), std::vector<double>{PollingIdleSource::kPollSeconds});
}

TEST_F(PollingIdleSourceTest, AHandlerMayWatchAnew) {
  source_.watch(60, {.onIdle = [this](Moment) { source_.watch(120, handlers("b")); },
                     .onActive = [](Moment) {}});
  loop_.advance(130);
  EXPECT_EQ(told_, (TimedTold{{"b-", 1000}}));
}

TEST_F(PollingIdleSourceTest, StopsWhenItCannotBeToldAnyMore) {
  source_.watch(60, handlers("a"));
  lastInput_.reset();
  loop_.advance(100);
  EXPECT_EQ(told_, TimedTold{});
  EXPECT_TRUE(loop_.timerIntervals().empty());
}

TEST_F(PollingIdleSourceTest, LeavesNoTimerBehind) {
  {
    PollingIdleSource source(loop_, steadyClock_, [] { return 0.0; });
    source.watch(60, handlers("a"));
    EXPECT_EQ(loop_.timerIntervals().size(), 1U);
  }
  EXPECT_TRUE(loop_.timerIntervals().empty());
}

}  // namespace
}  // namespace tessum
