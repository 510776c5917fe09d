// Lists what keeps the computer from becoming idle, according to logind.

#pragma once

#include <string>

#include "core/bus/bus.h"
#include "core/bus/bus_name.h"
#include "core/presence/linux/awake_reasons.h"

namespace tessum {

// Main thread only.
class IdleInhibitors {
 public:
  // Reports all inhibitors whenever they may have changed. `system` must outlive it.
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
