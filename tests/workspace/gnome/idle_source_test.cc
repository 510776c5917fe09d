#include "core/workspace/gnome/idle_source.h"

#include "tests/support/bus/bus_linux.h"
#include "tests/support/environment.h"
#include "tests/support/fakes/fake_clock.h"
#include "tests/support/fakes/fake_steady_clock.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace tessum {
namespace {

constexpr char kName[] = "org.gnome.Mutter.IdleMonitor";
constexpr char kPath[] = "/org/gnome/Mutter/IdleMonitor/Core";

// Counts as long as the test says, and keeps the watches that it is given.
class FakeIdleMonitor {
 public:
  FakeIdleMonitor(SystemMainLoop& loop, const std::string& address) : peer_(loop, address) {
    answer("AddIdleWatch", [this](sd_bus_message* call) {
      sd_bus_message_read(call, "t", &interval);
      idleWatch = ++watches_;
      sd_bus_reply_method_return(call, "u", idleWatch);
      if (milliseconds >= interval) fire(idleWatch);
    });
    answer("AddUserActiveWatch", [this](sd_bus_message* call) {
      activityWatches.push_back(++watches_);
      sd_bus_reply_method_return(call, "u", watches_);
    });
    answer("RemoveWatch", [this](sd_bus_message* call) {
      std::uint32_t watch = 0;
      sd_bus_message_read(call, "u", &watch);
      removed.push_back(watch);
      sd_bus_reply_method_return(call, "");
    });
    answer("GetIdletime", [this](sd_bus_message* call) {
      ++questions;
      sd_bus_reply_method_return(call, "t", milliseconds);
    });
    peer_.takeName(kName);
  }

  void fire(std::uint32_t watch) { peer_.emit(kPath, kName, "WatchFired", "u", watch); }

  // Nobody has touched anything for that long.
  void reach(std::uint64_t count) {
    milliseconds = count;
    if (count >= interval) fire(idleWatch);
  }

  // Somebody touches something, that long ago.
  void touch(std::uint64_t count = 0) {
    milliseconds = count;
    for (const auto watch : std::exchange(activityWatches, {})) fire(watch);
  }

  std::uint64_t milliseconds = 0;
  std::uint64_t interval = UINT64_MAX;
  std::uint32_t idleWatch = 0;
  std::vector<std::uint32_t> activityWatches;
  std::vector<std::uint32_t> removed;
  int questions = 0;

 private:
  void answer(const std::string& member, BusPeer::Answer answer) {
    peer_.answer(kPath, kName, member, std::move(answer));
  }

  BusPeer peer_;
  std::uint32_t watches_ = 0;
};

class GnomeIdleTest : public testing::Test {
 protected:
  using Told = std::vector<std::string>;

  GnomeIdleTest() { place_.start(); }

  void startMonitor() { monitor_ = std::make_unique<FakeIdleMonitor>(loop_, place_.address()); }

  void watch(double seconds) {
    source_->watch(seconds, {.onIdle = [this](Moment when) { note("idle", when); },
                             .onActive = [this](Moment when) { note("active", when); }});
  }

  // Waits until the monitor has the watch.
  [[nodiscard]] bool isWatched(std::uint64_t interval) {
    return runUntil(loop_, [&] { return monitor_->interval == interval; });
  }

  [[nodiscard]] testing::AssertionResult tells(const Told& expected) {
    static_cast<void>(runUntil(loop_, [&] { return told_.size() >= expected.size(); }));
    if (told_ == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(told_) << " was told";
  }

  void note(const std::string& what, Moment when) {
    told_.push_back(what + " " + std::to_string(static_cast<int>(when.seconds)));
  }

  SystemMainLoop loop_;
  FakeClock clock_{{1000}};
  FakeSteadyClock steadyClock_{clock_};
  PrivateBus place_;
  const ScopedVariable address_{"DBUS_SESSION_BUS_ADDRESS", place_.address().c_str()};
  std::unique_ptr<FakeIdleMonitor> monitor_;
  const std::shared_ptr<Bus> bus_ =
      std::make_shared<Bus>(loop_, Bus::Kind::session,
                            Bus::Timing{.firstRetrySeconds = 0.01, .longestRetrySeconds = 0.05});
  std::unique_ptr<IdleSource> source_ = openGnomeIdleSource(steadyClock_, bus_);
  Told told_;
};

TEST_F(GnomeIdleTest, TellsTheLastInputAndTheFirstAgainAndAgain) {
  startMonitor();
  watch(300);
  ASSERT_TRUE(isWatched(300000));
  monitor_->reach(300000);
  ASSERT_TRUE(tells({"idle 700"}));
  clock_.set({2000});
  monitor_->touch(1000);
  ASSERT_TRUE(tells({"idle 700", "active 1999"}));
  monitor_->reach(400000);
  EXPECT_TRUE(tells({"idle 700", "active 1999", "idle 1600"}));
  monitor_->touch();
  EXPECT_TRUE(tells({"idle 700", "active 1999", "idle 1600", "active 2000"}));
}

TEST_F(GnomeIdleTest, TellsWhatIsSoAlready) {
  startMonitor();
  monitor_->milliseconds = 500000;
  watch(300);
  EXPECT_TRUE(tells({"idle 500"}));
}

// The input comes after the watch for idleness has fired, and before that for activity is set.
TEST_F(GnomeIdleTest, AnInputAtTheLastMomentCounts) {
  startMonitor();
  watch(300);
  ASSERT_TRUE(isWatched(300000));
  monitor_->milliseconds = 5;
  monitor_->fire(monitor_->idleWatch);
  ASSERT_TRUE(runUntil(loop_, [&] { return monitor_->questions == 1; }));
  monitor_->touch();
  monitor_->reach(300000);
  EXPECT_TRUE(tells({"idle 700"}));
  EXPECT_EQ(monitor_->questions, 2) << "input is asked about while somebody is there";
}

TEST_F(GnomeIdleTest, AnotherWatchReplacesIt) {
  startMonitor();
  watch(300);
  ASSERT_TRUE(isWatched(300000));
  monitor_->reach(300000);
  ASSERT_TRUE(tells({"idle 700"}));
  const auto replaced = monitor_->idleWatch;
  monitor_->milliseconds = 0;
  watch(600);
  ASSERT_TRUE(isWatched(600000));
  EXPECT_EQ(monitor_->removed, std::vector{replaced});
  monitor_->reach(600000);
  EXPECT_TRUE(tells({"idle 700", "idle 400"}));
}

TEST_F(GnomeIdleTest, AMonitorThatComesLaterIsFound) {
  watch(300);
  startMonitor();
  ASSERT_TRUE(isWatched(300000));
  monitor_->reach(300000);
  EXPECT_TRUE(tells({"idle 700"}));
}

TEST_F(GnomeIdleTest, ARestartIsSurvived) {
  startMonitor();
  watch(300);
  ASSERT_TRUE(isWatched(300000));
  monitor_->reach(300000);
  ASSERT_TRUE(tells({"idle 700"}));
  monitor_ = nullptr;
  place_.stop();
  place_.start();
  startMonitor();
  EXPECT_TRUE(tells({"idle 700", "active 1000"}));
  monitor_->reach(300000);
  EXPECT_TRUE(tells({"idle 700", "active 1000", "idle 700"}));
}

}  // namespace
}  // namespace tessum
