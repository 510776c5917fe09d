#include "core/workspace/x11/idle_source.h"

#include "core/workspace/polling_idle_source.h"
#include "tests/workspace/x11/x11_test.h"

namespace tessum {
namespace {

constexpr double kTolerance = 0.25;  // in seconds

class IdleSourceX11Test : public X11Test {
 protected:
  struct Telling {
    std::string what;
    Moment moment;
  };

  IdleSource::Handlers handlers(const std::string& name) {
    return {.onIdle =
                [this, name](Moment at) {
                  told_.push_back({name + " idle", at});
                },
            .onActive =
                [this, name](Moment at) {
                  told_.push_back({name + " active", at});
                }};
  }

  void moveMouse() { desktop_.run("xdotool", {"mousemove_relative", "--", "1", "1"}); }
  void pressKey() { desktop_.run("xdotool", {"key", "--clearmodifiers", "a"}); }

  // Runs the loop until that is reported.
  [[nodiscard]] bool comesTo(const std::string& what) {
    return runUntil([&] { return !told_.empty() && told_.back().what == what; });
  }

  void expectBetween(Moment start, Moment moment, Moment end) const {
    EXPECT_GE(moment.seconds, start.seconds - kTolerance);
    EXPECT_LE(moment.seconds, end.seconds + kTolerance);
  }

  std::vector<Telling> told_;
};

TEST_F(IdleSourceX11Test, TellsOfIdlenessAndInputAgainAndAgain) {
  const auto idle = openX11IdleCounter(loop_, clock_, desktop_.display());
  ASSERT_NE(idle, nullptr);
  Moment before = clock_.now();
  moveMouse();
  Moment after = clock_.now();
  idle->watch(0.2, handlers("a"));
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(comesTo("a idle"));
    expectBetween(before, told_.back().moment, after);
    EXPECT_GE(secondsBetween(told_.back().moment, clock_.now()), 0.2);

    before = clock_.now();
    i == 1 ? pressKey() : moveMouse();
    after = clock_.now();
    ASSERT_TRUE(comesTo("a active"));
    expectBetween(before, told_.back().moment, after);
  }
  EXPECT_EQ(told_.size(), 6U);
}

TEST_F(IdleSourceX11Test, TellsOfIdlenessThatHasBegunBeforeTheWatch) {
  const auto idle = openX11IdleCounter(loop_, clock_, desktop_.display());
  const Moment before = clock_.now();
  moveMouse();
  const Moment after = clock_.now();
  letPass(0.3);
  idle->watch(0.2, handlers("a"));
  EXPECT_TRUE(told_.empty()) << "the loop tells";
  ASSERT_TRUE(comesTo("a idle"));
  expectBetween(before, told_.back().moment, after);
}

TEST_F(IdleSourceX11Test, InputBeforeTheThresholdIsNotTold) {
  const auto idle = openX11IdleCounter(loop_, clock_, desktop_.display());
  moveMouse();
  idle->watch(1000, handlers("a"));
  moveMouse();
  pressKey();
  ASSERT_TRUE(runUntil([&] { return true; }));
  EXPECT_TRUE(told_.empty());
}

TEST_F(IdleSourceX11Test, AnotherWatchReplacesTheFirst) {
  const auto idle = openX11IdleCounter(loop_, clock_, desktop_.display());
  moveMouse();
  idle->watch(0.1, handlers("a"));
  ASSERT_TRUE(comesTo("a idle"));
  idle->watch(0.3, handlers("b"));
  ASSERT_TRUE(comesTo("b idle")) << "it is idle for the new one too";
  moveMouse();
  ASSERT_TRUE(comesTo("b active"));
  EXPECT_EQ(told_.size(), 3U);

  moveMouse();
  idle->watch(0.1, handlers("c"));
  letPass(0.2);  // the alarm goes off, and nobody reads it
  idle->watch(1000, handlers("d"));
  ASSERT_TRUE(runUntil([&] { return true; }));
  EXPECT_EQ(told_.size(), 3U);
}

TEST_F(IdleSourceX11Test, InputThatComesBeforeIdlenessIsReadIsNotMissed) {
  const auto idle = openX11IdleCounter(loop_, clock_, desktop_.display());
  moveMouse();
  idle->watch(0.1, handlers("a"));
  letPass(0.3);
  moveMouse();
  ASSERT_TRUE(runUntil([&] { return told_.size() >= 2; }));
  EXPECT_EQ(told_[0].what, "a idle");
  EXPECT_EQ(told_[1].what, "a active");
}

TEST_F(IdleSourceX11Test, AHandlerMayWatchAnew) {
  const auto idle = openX11IdleCounter(loop_, clock_, desktop_.display());
  moveMouse();
  idle->watch(
      0.1, {.onIdle = [&](Moment) { idle->watch(0.2, handlers("b")); }, .onActive = [](Moment) {}});
  EXPECT_TRUE(comesTo("b idle"));
}

TEST_F(IdleSourceX11Test, IsSilentOnceTheDisplayIsGone) {
  const auto idle = openX11IdleCounter(loop_, clock_, desktop_.display());
  const auto poll = openX11IdlePoll(loop_, clock_, desktop_.display());
  idle->watch(0.2, handlers("a"));
  poll->watch(0.2, handlers("b"));
  desktop_.killServer();
  ASSERT_TRUE(runUntil([&] { return true; }));
  idle->watch(0.1, handlers("c"));
  bool hasPolled = false;
  loop_.runAfter(PollingIdleSource::kPollSeconds + 0.1, [&] { hasPolled = true; });
  ASSERT_TRUE(runUntil([&] { return hasPolled; }));
  EXPECT_TRUE(told_.empty());
}

TEST_F(IdleSourceX11Test, TheScreenSaverTellsTheSameMoreSlowly) {
  const auto idle = openX11IdlePoll(loop_, clock_, desktop_.display());
  ASSERT_NE(idle, nullptr);
  Moment before = clock_.now();
  moveMouse();
  Moment after = clock_.now();
  idle->watch(4, handlers("a"));
  ASSERT_TRUE(comesTo("a idle"));
  expectBetween(before, told_.back().moment, after);
  letPass(2);  // so that the next poll comes soon after the input
  before = clock_.now();
  moveMouse();
  after = clock_.now();
  ASSERT_TRUE(comesTo("a active"));
  expectBetween(before, told_.back().moment, after);
}

TEST(IdleSourceX11, IsAbsentWhereTheServerDoesNotTell) {
  const Desktop desktop({"-extension", "MIT-SCREEN-SAVER"});
  SystemMainLoop loop;
  const SystemSteadyClock clock;
  EXPECT_EQ(openX11IdlePoll(loop, clock, desktop.display()), nullptr);
  EXPECT_EQ(openX11IdlePoll(loop, clock, "nonsense"), nullptr);
  EXPECT_EQ(openX11IdleCounter(loop, clock, "nonsense"), nullptr);
}

}  // namespace
}  // namespace tessum
