// Decides from input, lock and sleep whether the user is away.

#pragma once

#include <functional>
#include <optional>

#include "core/loop/main_loop.h"
#include "core/platform/steady_clock.h"

namespace tessum {

// The user is away while the screen is locked, while the computer sleeps, and once there has been
// no input for long enough, unless something such as a video or a call keeps the screen awake. Time
// away without input counts from the last input or, if later, from when nothing kept the screen
// awake any more. Main thread only.
class Away {
 public:
  // Called once for each time away; `since` may be earlier than other calls.
  struct Handlers {
    std::function<void(Moment since)> onAway;
    std::function<void(Moment when)> onBack;
  };

  // The user is away after `seconds` without input; absent means never. `loop` and `clock` must
  // outlive the object.
  Away(MainLoop& loop, const SteadyClock& clock, std::optional<double> seconds, Handlers handlers);
  ~Away();
  Away(const Away&) = delete;
  Away& operator=(const Away&) = delete;

  // Changes the limit; absent means never. A user who is away by the old limit is back, until the
  // next noteIdle().
  void setLimit(std::optional<double> seconds);

  void noteIdle(Moment lastInput);
  void noteInput(Moment when);
  void noteLock(bool isLocked, Moment when);
  void noteSleep(Moment when);
  void noteWakeUp(Moment when);
  void noteKeptAwake(bool isKeptAwake, Moment when);

  // Since when the user has been away; absent while present.
  [[nodiscard]] std::optional<Moment> since() const { return awaySince_; }

 private:
  void update(Moment when);
  [[nodiscard]] std::optional<Moment> untouchedSince(Moment now);

  MainLoop& loop_;
  const SteadyClock& clock_;
  std::optional<double> seconds_;
  const Handlers handlers_;

  std::optional<Moment> lockedSince_;
  std::optional<Moment> asleepSince_;
  std::optional<Moment> lastInput_;  // absent while the computer is in use
  bool isKeptAwake_ = false;
  Moment keptAwakeUntil_;
  std::optional<Moment> awaySince_;
  std::optional<MainLoop::TimerToken> timer_;  // runs after something stopped keeping it awake
};

}  // namespace tessum
