// Follows logind's announcements of sleep and shutdown.
//
// logind waits for programs that hold an inhibitor in "delay" mode, up to its InhibitDelayMaxUSec,
// which is five seconds by default. The inhibitor is a descriptor: closing it lets logind proceed.
// We always hold one, and hand it to the handler with the announcement.

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
  using Delay = std::shared_ptr<void>;  // null where there is none; any thread may release it

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
  std::weak_ptr<Descriptor> given_;        // the one that a handler received last
  BusName name_;
};

}  // namespace tessum
