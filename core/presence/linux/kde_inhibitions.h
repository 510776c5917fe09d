// Lists what keeps the screen on in KDE, according to its power management.

#pragma once

#include <string>

#include "core/bus/bus.h"
#include "core/bus/bus_name.h"
#include "core/presence/linux/awake_reasons.h"

namespace tessum {

// Main thread only.
class KdeInhibitions {
 public:
  // Reports all inhibitions whenever they may have changed. `session` must outlive it.
  KdeInhibitions(Bus& session, AwakeReasonsHandler onReasons);

 private:
  void start(const std::string& owner);
  void ask();
  void askForList();

  Bus& session_;
  const AwakeReasonsHandler onReasons_;
  std::string owner_;  // of the power management's name
  BusSlot changes_;
  BusSlot question_;
  BusName name_;
};

}  // namespace tessum
