// Whether the screen is locked, of several that say so.

#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>

#include "core/loop/main_loop.h"

namespace tessum {

// Locked while any source says so. Main thread only.
class LockState {
 public:
  // A request to lock counts for this long. By then the locker has said that it locks; one that
  // never says so would never say that it unlocks.
  static constexpr double kRequestSeconds = 5;

  // Tells of each change; `loop` must outlive it. Unlocked at first.
  LockState(MainLoop& loop, std::function<void(bool isLocked)> onChange);
  ~LockState();
  LockState(const LockState&) = delete;
  LockState& operator=(const LockState&) = delete;

  // What `source` says. The first that unlocks ends a request, too.
  void set(const std::string& source, bool isLocked);

  // Somebody wants the screen to be locked, or unlocked.
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
