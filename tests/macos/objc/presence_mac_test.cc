// Runs the presence source as macOS would compile it, over the fake computer.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/presence/system_presence.h"
#include "tests/macos/objc/fake_power.h"
#include "tests/support/fakes/fake_clock.h"
#include "tests/support/fakes/fake_steady_clock.h"

namespace tessum {
namespace {

using fake::Power;

constexpr char kLocked[] = "com.apple.screenIsLocked";
constexpr char kUnlocked[] = "com.apple.screenIsUnlocked";

class MacPresence : public testing::Test {
 protected:
  ~MacPresence() override {
    source_ = nullptr;
    delay_ = nullptr;
    EXPECT_EQ(power_.observers(), 0U);
    EXPECT_FALSE(power_.isRegistered());
    EXPECT_FALSE(power_.isOpen());
  }

  PresenceHandlers noting() {
    return {.onLock = [this](bool isLocked,
                             Moment when) { note(isLocked ? "locked" : "unlocked", when); },
            .onSleep =
                [this](Moment when, PresenceHandlers::Delay delay) {
                  note("asleep", when);
                  delay_ = std::move(delay);
                },
            .onWake = [this](Moment when) { note("back", when); }};
  }

  using Told = std::vector<std::string>;

  Power power_;
  SystemMainLoop loop_;
  FakeClock clock_{Date{7}};
  FakeSteadyClock steadyClock_{clock_};
  std::unique_ptr<PresenceSource> source_ = openSystemPresence(loop_, steadyClock_);
  Told told_;
  PresenceHandlers::Delay delay_;

 private:
  void note(const std::string& what, Moment when) {
    told_.push_back(what);
    EXPECT_EQ(when.seconds, 7);
  }
};

TEST_F(MacPresence, TellsEachChangeOfTheLockOnce) {
  source_->watch(noting());
  power_.post(kUnlocked);
  EXPECT_EQ(told_, Told{});
  power_.post(kLocked);
  power_.post(kLocked);
  power_.post(kUnlocked);
  EXPECT_EQ(told_, (Told{"locked", "unlocked"}));
}

TEST_F(MacPresence, HoldsTheSleepBackUntilTheHandlerIsDone) {
  source_->watch(noting());
  power_.send(Power::kWillSleep, 42);
  EXPECT_EQ(told_, Told{"asleep"});
  EXPECT_TRUE(power_.allowed().empty());
  delay_ = nullptr;
  EXPECT_EQ(power_.allowed(), std::vector<std::intptr_t>{42});
  power_.send(Power::kHasPoweredOn, 0);
  EXPECT_EQ(told_, (Told{"asleep", "back"}));
  power_.send(Power::kHasPoweredOn, 0);
  EXPECT_EQ(told_.size(), 2U);
}

TEST_F(MacPresence, ObjectsToNoSleep) {
  source_->watch(noting());
  power_.send(Power::kCanSleep, 41);
  EXPECT_EQ(power_.allowed(), std::vector<std::intptr_t>{41});
  EXPECT_EQ(told_, Told{});
}

TEST_F(MacPresence, HoldsNothingBackWithoutAHandler) {
  source_->watch({});
  power_.post(kLocked);
  power_.send(Power::kWillSleep, 42);
  power_.send(Power::kHasPoweredOn, 0);
  EXPECT_EQ(power_.allowed(), std::vector<std::intptr_t>{42});
}

TEST_F(MacPresence, ADelayMayOutliveTheSource) {
  source_->watch(noting());
  power_.send(Power::kWillSleep, 42);
  source_ = nullptr;
  EXPECT_TRUE(power_.allowed().empty());
  EXPECT_FALSE(power_.isRegistered());
  delay_ = nullptr;
  EXPECT_EQ(power_.allowed(), std::vector<std::intptr_t>{42});
  EXPECT_FALSE(power_.isOpen());
}

TEST_F(MacPresence, ALaterWatchReplacesTheFirst) {
  source_->watch({.onLock = [](bool, Moment) { FAIL() << "it was replaced"; }});
  source_->watch(noting());
  power_.post(kLocked);
  EXPECT_EQ(told_, Told{"locked"});
}

TEST_F(MacPresence, TheLockIsToldWhereSleepIsNot) {
  power_.permitsRegistration = false;
  source_->watch(noting());
  power_.post(kLocked);
  EXPECT_EQ(told_, Told{"locked"});
}

}  // namespace
}  // namespace tessum
