// Follows the owner of a well-known name on a bus.
//
// A desktop service has a well-known name that programs acquire and release. Calls and
// subscriptions are addressed to the current owner, and end when it exits, a successor takes the
// name, or the bus is lost.

#pragma once

#include <functional>
#include <string>

#include "core/bus/bus.h"

namespace tessum {

// Follows one name. Main thread only. The handler must not destroy it.
class BusName {
 public:
  // Receives the owner's unique name, such as ":1.7", or an empty text when there is no owner or
  // the bus is lost. Called from the loop for each change; there is no owner at first. A successor
  // is reported in one call, without an empty text before it.
  using OwnerHandler = std::function<void(const std::string& owner)>;

  // `bus` must outlive it. Does not start the service.
  BusName(Bus& bus, std::string name, OwnerHandler onOwner);
  ~BusName();
  BusName(const BusName&) = delete;
  BusName& operator=(const BusName&) = delete;

 private:
  void ask();
  void set(const std::string& owner);

  Bus& bus_;
  const std::string name_;
  const OwnerHandler onOwner_;
  std::string owner_;
  Bus::ListenerToken listener_;
  BusSlot changes_;
  BusSlot question_;
};

}  // namespace tessum
