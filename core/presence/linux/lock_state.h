// Combines several reports of whether the screen is locked.

#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>

#include "core/loop/main_loop.h"

namespace tessum {

// Locked while any source reports a lock. Main thread only.
class LockState {
 public:
  // A request to lock counts for this long. By then the locker has reported the lock; one that
  // never does would never report the unlocking either.
  static constexpr double kRequestSeconds = 5;

  // Reports each change; `loop` must outlive it. Unlocked at first.
  LockState(MainLoop& loop, std::function<void(bool isLocked)> onChange);
  ~LockState();
  LockState(const LockState&) = delete;
  LockState& operator=(const LockState&) = delete;

  // Sets the state of `source`. The first source that unlocks also ends a request.
  void set(const std::string& source, bool isLocked);

  // Handles a request to lock or unlock the screen.
  void requestLock();
  void requestUnlock();

 private:
  void endRequest();
  void tell();

  MainLoop& loop_;
  const std::function<void(bool)> onChange_;
  std::set<std::string> lockedBy_;
  std::optional<MainLoop::TimerToken> request_;
  bool toldLocked_ = false;
};

}  // namespace tessum
