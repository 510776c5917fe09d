#include "core/workspace/wayland/windows.h"

namespace tessum {

std::unique_ptr<WaylandWindows> openWindows(WaylandConnection& connection,
                                            WaylandToplevels& toplevels) {
  if (auto windows = openWlrWindows(connection, toplevels)) return windows;
  return openPlasmaWindows(connection, toplevels);
}

}  // namespace tessum
