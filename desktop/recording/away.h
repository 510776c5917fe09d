// Whether the user is away, from what is known of input, lock and sleep.

#pragma once

#include <functional>
#include <optional>

#include "core/loop/main_loop.h"
#include "core/platform/steady_clock.h"

namespace tessum {

// The user is away while the screen is locked, while the computer sleeps, and once nothing has been
// touched for long enough, unless something keeps the screen awake: a video or a call. Without
// input the time away counts from the last input or, when that is later, from when nothing kept the
// screen awake any more. Main thread only.
class Away {
 public:
  // Told once for each time away; `since` may lie before other calls.
  struct Handlers {
    std::function<void(Moment since)> onAway;
    std::function<void(Moment when)> onBack;
  };

  // Without input for `seconds` the user is away; absent means never. `loop` and `clock` must
  // outlive the object.
  Away(MainLoop& loop, const SteadyClock& clock, std::optional<double> seconds, Handlers handlers);
  ~Away();
  Away(const Away&) = delete;
  Away& operator=(const Away&) = delete;

  // Without input for `seconds` the user is away from now on; absent means never. Who is away
  // without input by the limit before is back, until the next noteIdle().
  void setLimit(std::optional<double> seconds);

  void noteIdle(Moment lastInput);
  void noteInput(Moment when);
  void noteLock(bool isLocked, Moment when);
  void noteSleep(Moment when);
  void noteWakeUp(Moment when);
  void noteKeptAwake(bool isKeptAwake, Moment when);

  // Since when the user has been away; absent while not.
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
  std::optional<MainLoop::TimerToken> timer_;  // for the time after something kept it awake
};

}  // namespace tessum
