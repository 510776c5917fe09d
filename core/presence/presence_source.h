// Reports whether the user can be at the computer.

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/platform/steady_clock.h"

namespace tessum {

// A program that keeps the screen on, such as during a video or a call.
struct AwakeReason {
  std::string who;  // the program's name for itself, such as "org.mozilla.firefox"
  std::string why;  // its reason for the user, such as "Playing video"; may be empty

  friend bool operator==(const AwakeReason&, const AwakeReason&) = default;
};

// Handlers for what happens to the session that the program was started in. Each is called from the
// main loop with the moment at which the program learned of the event, and may be null. None may
// destroy the source or call watch() again.
//
// The initial state is: screen unlocked, computer awake, nothing keeping it awake. Any difference
// is reported like a change. Unknown states are never reported: a desktop without a lock, a system
// without sleep, a service that is not running.
struct PresenceHandlers {
  // Delays the announced event while somebody holds it, up to the system's limit of a few seconds.
  // Null where the system offers no delay. Any thread may release it.
  using Delay = std::shared_ptr<void>;

  // The screen is locked or unlocked, or switches to another user and back. Called once for each
  // change, however many services report it.
  std::function<void(bool isLocked, Moment when)> onLock = nullptr;

  // The computer is about to sleep. It does so once everybody has released the delay.
  std::function<void(Moment when, Delay delay)> onSleep = nullptr;

  // The login session is ending, or the computer is about to shut down.
  std::function<void(Moment when, Delay delay)> onSessionEnd = nullptr;

  // The user may be back after one or more calls of onSleep and onSessionEnd: the computer is
  // awake, the shutdown was cancelled, or the user has logged in again.
  std::function<void(Moment when)> onWake = nullptr;

  // Receives all programs that keep the screen on from now on. Sorted, without duplicates, at most
  // 32, each text at most 200 bytes of UTF-8.
  std::function<void(const std::vector<AwakeReason>& reasons, Moment when)> onKeptAwake = nullptr;
};

// One per program. Main thread only.
class PresenceSource {
 public:
  virtual ~PresenceSource() = default;

  // Starts calling `handlers`. Replaces an earlier watch, whose handlers are not called again.
  virtual void watch(PresenceHandlers handlers) = 0;
};

}  // namespace tessum
