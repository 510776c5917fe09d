// Whether the user can be at the computer at all.

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/platform/steady_clock.h"

namespace tessum {

// A program that keeps the screen from being switched off: it shows a video, or a call is going on.
struct AwakeReason {
  std::string who;  // the program's name for itself, such as "org.mozilla.firefox"
  std::string why;  // its words to the user, such as "Playing video"; may be empty

  friend bool operator==(const AwakeReason&, const AwakeReason&) = default;
};

// What happens to the session that the program was started in. Each handler is called from the main
// loop, with the moment at which the program heard of it, and may be null. None of them may destroy
// the source or watch it anew.
//
// At first the screen is unlocked, the computer awake and nothing keeps it so; where that is not
// the case, it is told like a change. What cannot be known is never told: a desktop without a lock,
// a system without sleep, a service that does not run.
struct PresenceHandlers {
  // Keeps back what was announced, for as long as somebody holds it, but not longer than the system
  // allows, which is a few seconds. Null where there is no such delay. Any thread may let it go.
  using Delay = std::shared_ptr<void>;

  // The screen is locked or unlocked, or goes to another user and comes back. Called once for each
  // change, however many services tell of it.
  std::function<void(bool isLocked, Moment when)> onLock = nullptr;

  // The computer is about to sleep. It does so once all have let the delay go.
  std::function<void(Moment when, Delay delay)> onSleep = nullptr;

  // The login session ends, or the computer is about to shut down.
  std::function<void(Moment when, Delay delay)> onSessionEnd = nullptr;

  // The user may be back, after one or more of onSleep and onSessionEnd: the computer is awake, it
  // does not shut down after all, or the user has logged in anew.
  std::function<void(Moment when)> onWake = nullptr;

  // These programs keep the screen on from now on; none do when it is empty. Sorted, without
  // repetitions, at most 32, each text at most 200 bytes of UTF-8.
  std::function<void(const std::vector<AwakeReason>& reasons, Moment when)> onKeptAwake = nullptr;
};

// One for the program. Main thread only.
class PresenceSource {
 public:
  virtual ~PresenceSource() = default;

  // Starts to tell `handlers`. Replaces an earlier watch, whose handlers are not called again.
  virtual void watch(PresenceHandlers handlers) = 0;
};

}  // namespace tessum
