// The computer's sleep and its end, as logind announces them.
//
// logind waits for those who hold an inhibitor in "delay" mode, up to its InhibitDelayMaxUSec,
// which is five seconds by default. The inhibitor is a descriptor: closing it lets the computer go
// on. One is held all the time, and given to the handler when its time has come.

#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "core/bus/bus.h"
#include "core/bus/bus_name.h"
#include "core/platform/descriptor.h"

namespace tessum {

// Main thread only.
class PowerTransitions {
 public:
  using Delay = std::shared_ptr<void>;  // null where there is none; any thread may let it go

  struct Handlers {
    std::function<void(Delay delay)> onSleep;
    std::function<void()> onWake;
    std::function<void(Delay delay)> onShutdown;
    std::function<void()> onShutdownGivenUp;
  };

  // `system` must outlive it.
  PowerTransitions(Bus& system, Handlers handlers);

 private:
  enum Transition : std::size_t { sleep, shutdown, kTransitions };

  void start(const std::string& owner);
  void follow(Transition transition, const char* signal, const char* property);
  void set(Transition transition, bool isUnderWay);
  void tell(Transition transition, bool isUnderWay);
  void takeInhibitor();
  [[nodiscard]] Delay giveInhibitor();

  struct Following {
    bool isUnderWay = false;
    BusSlot changes;
    BusSlot question;
  };

  Bus& system_;
  const Handlers handlers_;
  std::string owner_;  // of logind's name
  std::array<Following, kTransitions> following_;
  BusSlot inhibitorQuestion_;
  std::shared_ptr<Descriptor> inhibitor_;  // null where there is none
  std::weak_ptr<Descriptor> given_;        // the one that a handler has got last
  BusName name_;
};

}  // namespace tessum
