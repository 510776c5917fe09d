// Lists what keeps GNOME's session from becoming idle. The session managers of Cinnamon and MATE
// have the same name and methods.

#pragma once

#include <string>
#include <vector>

#include "core/bus/bus.h"
#include "core/bus/bus_name.h"
#include "core/presence/linux/awake_reasons.h"

namespace tessum {

// Main thread only.
class GnomeInhibitors {
 public:
  // Reports all inhibitors whenever they may have changed. `session` must outlive it.
  GnomeInhibitors(Bus& session, AwakeReasonsHandler onReasons);
  ~GnomeInhibitors();

 private:
  struct Inhibitor;

  void start(const std::string& owner);
  void ask();
  void askAbout(const std::vector<BusObjectPath>& paths);
  void ask(Inhibitor& inhibitor, const std::string& path);
  void tellOnceKnown();

  Bus& session_;
  const AwakeReasonsHandler onReasons_;
  std::string owner_;  // of the session manager's name
  BusSlot added_;
  BusSlot removed_;
  BusSlot question_;
  std::vector<Inhibitor> inhibitors_;  // that are being queried
  BusName name_;
};

}  // namespace tessum
