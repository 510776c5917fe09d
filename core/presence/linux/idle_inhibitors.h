// What keeps the computer from counting as idle, of which logind keeps the list.

#pragma once

#include <string>

#include "core/bus/bus.h"
#include "core/bus/bus_name.h"
#include "core/presence/linux/awake_reasons.h"

namespace tessum {

// Main thread only.
class IdleInhibitors {
 public:
  // Tells what is there whenever something may have changed. `system` must outlive it.
  IdleInhibitors(Bus& system, AwakeReasonsHandler onReasons);

 private:
  void start(const std::string& owner);
  void ask();

  Bus& system_;
  const AwakeReasonsHandler onReasons_;
  std::string owner_;  // of logind's name
  BusSlot changes_;
  BusSlot question_;
  BusName name_;
};

}  // namespace tessum
