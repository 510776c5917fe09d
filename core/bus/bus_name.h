// Who has a well-known name of a bus.
//
// A service of the desktop is known by a name that programs take and give up. What is asked of a
// service, and subscribed, begins with the program that has the name now and ends with it: with its
// end, its successor or the loss of the bus.

#pragma once

#include <functional>
#include <string>

#include "core/bus/bus.h"

namespace tessum {

// Follows one name. Main thread only. The handler must not destroy it.
class BusName {
 public:
  // Gets the unique name of the program that has the name, such as ":1.7", or an empty text when
  // nobody has it or the bus is lost. Called for each change, from the loop; at first nobody has
  // it. A successor is told in one call, without an empty text before it.
  using OwnerHandler = std::function<void(const std::string& owner)>;

  // `bus` must outlive it. Nobody is made to start by it.
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
