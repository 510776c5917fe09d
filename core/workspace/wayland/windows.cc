#include "core/workspace/wayland/windows.h"

#include "core/platform/locations.h"

namespace tessum {

std::unique_ptr<WaylandWindows> openWindows(WaylandConnection& connection,
                                            WaylandToplevels& toplevels) {
  if (auto windows = openWlrWindows(connection, toplevels)) return windows;
  return openPlasmaWindows(connection, toplevels);
}

// Only KWin has the shell of Plasma.
std::string remedyForHiddenWindows(const WaylandConnection& connection) {
  if (!connection.offers("org_kde_plasma_shell")) return "";
  return "KDE Plasma shows its windows to programs that a desktop entry allows it to: copy "
         "share/applications/tessum-windows.desktop to ~/.local/share/applications, and write "
         "Exec=" +
         SystemLocations().executablePath().value_or("Tessum") + " in it.";
}

}  // namespace tessum
