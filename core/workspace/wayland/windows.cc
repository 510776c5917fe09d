#include "core/workspace/wayland/windows.h"

namespace tessum {

std::unique_ptr<WaylandWindows> openWindows(WaylandConnection& connection,
                                            WaylandToplevels& toplevels) {
  if (auto windows = openWlrWindows(connection, toplevels)) return windows;
  return openPlasmaWindows(connection, toplevels);
}

// Only KWin has the shell of Plasma.
std::string remedyForHiddenWindows(const WaylandConnection& connection) {
  if (!connection.offers("org_kde_plasma_shell")) return "";
  return "KDE Plasma shows its windows over the session bus, which does not answer here, and to "
         "programs that a desktop entry permits; \"Tessum setup\" writes that entry.";
}

}  // namespace tessum
