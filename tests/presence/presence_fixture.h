// Both buses, logind, and the reports of the presence source.

#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/presence/linux/linux_presence.h"
#include "tests/support/bus/bus_linux.h"
#include "tests/support/bus/fake_logind_linux.h"
#include "tests/support/environment.h"
#include "tests/support/fakes/fake_clock.h"
#include "tests/support/fakes/fake_steady_clock.h"

namespace tessum {

class PresenceTest : public testing::Test {
 protected:
  using Told = std::vector<std::string>;

  void startBuses() {
    systemPlace_.start();
    sessionPlace_.start();
  }

  void startLogind() { logind_ = std::make_unique<FakeLogind>(loop_, systemPlace_.address()); }

  // Starts to watch and, if there is a logind, waits until it has answered all initial calls.
  void watch() {
    source_.watch(noting());
    if (!logind_) return;
    ASSERT_TRUE(runUntil(loop_, [&] { return logind_->heldInhibitors() == 1; }));
    ASSERT_TRUE(runUntilCalled("Get", FakeLogind::kSessionPath, 2));
  }

  // Waits until logind has been called like that so many times.
  [[nodiscard]] bool runUntilCalled(const std::string& member, const std::string& path, int times) {
    const std::string call = member + " " + path;
    return runUntil(loop_, [&] {
      const auto& calls = logind_->peer().calls;
      return std::count(calls.begin(), calls.end(), call) >= times;
    });
  }

  // Whether exactly this is reported, and nothing else before it is complete.
  [[nodiscard]] testing::AssertionResult tells(const Told& expected) {
    static_cast<void>(runUntil(loop_, [&] { return told_.size() >= expected.size(); }));
    if (told_ == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(told_) << " was told";
  }

  // Sets the moment of the next reports.
  void setTime(double seconds) { clock_.set({seconds}); }

  PresenceHandlers noting() {
    return {.onLock = [this](bool isLocked,
                             Moment when) { note(isLocked ? "locked" : "unlocked", when); },
            .onSleep =
                [this](Moment when, PresenceHandlers::Delay delay) {
                  delay_ = std::move(delay);
                  note("asleep", when);
                },
            .onSessionEnd =
                [this](Moment when, PresenceHandlers::Delay delay) {
                  delay_ = std::move(delay);
                  note("ended", when);
                },
            .onWake = [this](Moment when) { note("back", when); },
            .onKeptAwake =
                [this](const std::vector<AwakeReason>& reasons, Moment when) {
                  std::string text = "awake:";
                  for (const auto& [who, why] : reasons) text += " " + who + " (" + why + ")";
                  note(text, when);
                }};
  }

  SystemMainLoop loop_;
  FakeClock clock_;
  FakeSteadyClock steadyClock_{clock_};
  PrivateBus systemPlace_;
  PrivateBus sessionPlace_;
  const ScopedVariable systemAddress_{"DBUS_SYSTEM_BUS_ADDRESS", systemPlace_.address().c_str()};
  const ScopedVariable sessionAddress_{"DBUS_SESSION_BUS_ADDRESS", sessionPlace_.address().c_str()};
  ScopedVariable sessionId_{"XDG_SESSION_ID", nullptr};
  std::unique_ptr<FakeLogind> logind_;
  Told told_;
  std::vector<double> times_;  // of the reports
  PresenceHandlers::Delay delay_;
  LinuxPresence source_{loop_, steadyClock_,
                        Bus::Timing{.firstRetrySeconds = 0.01, .longestRetrySeconds = 0.05}};

 private:
  void note(std::string text, Moment when) {
    told_.push_back(std::move(text));
    times_.push_back(when.seconds);
  }
};

}  // namespace tessum
