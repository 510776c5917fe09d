// The login session of the user, as logind knows it.
//
// logind takes calls at /org/freedesktop/login1/session/auto, but sends signals from the session's
// own path. So the session's id is asked for first, and its path by that.

#pragma once

#include <functional>
#include <string>

#include "core/bus/bus.h"
#include "core/bus/bus_name.h"

namespace tessum {

// Main thread only.
class LoginSession {
 public:
  struct Handlers {
    std::function<void(bool isLocked)> onLocked;  // or another session is in front
    std::function<void()> onLockRequest;
    std::function<void()> onUnlockRequest;
    std::function<void()> onRemoved;
    std::function<void()> onFound;  // at first, and after logind or the user was away
  };

  // `system` must outlive it. Without logind, the session is neither locked nor removed.
  LoginSession(Bus& system, Handlers handlers);

 private:
  void start(const std::string& owner);
  void find();
  void locate(const std::string& id);
  void follow(const std::string& id, const std::string& path);
  void forget();
  void readState();
  void tellLocked();

  Bus& system_;
  const Handlers handlers_;
  std::string owner_;  // of logind's name
  std::string id_;     // empty while no session is known
  std::string path_;
  bool isHintSet_ = false;
  bool isInFront_ = true;
  BusSlot added_;
  BusSlot removed_;
  BusSlot question_;
  BusSlot changes_;
  BusSlot lockRequests_;
  BusSlot unlockRequests_;
  BusSlot hintQuestion_;
  BusSlot frontQuestion_;
  BusName name_;
};

}  // namespace tessum
