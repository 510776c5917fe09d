// Follows the user's login session in logind.
//
// logind accepts calls at /org/freedesktop/login1/session/auto, but sends signals from the
// session's own path. So we first ask for the session's id, and then for its path.
//
// A session that the user has left is "closing" while any of its programs runs, this one included,
// and is removed only then. logind does not announce "closing", but it does announce that the login
// screen comes to the front.

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
    std::function<void(bool isOver)> onOver;  // false also for the user's next session
  };

  // Reports each state whenever it may have changed. `system` must outlive it. When logind
  // disappears, the session becomes unlocked, and stays over if it was.
  LoginSession(Bus& system, Handlers handlers);

 private:
  void start(const std::string& owner);
  void find();
  void locate(const std::string& id);
  void follow(const std::string& id, const std::string& path);
  void forget();
  void ask();
  void takeState(const BusMessage& reply);
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
  BusSlot stateQuestion_;
  BusName name_;
};

}  // namespace tessum
