// The protocols by which compositors report their windows.

#pragma once

#include <memory>
#include <string>

#include "core/workspace/wayland/connection.h"
#include "core/workspace/wayland/toplevels.h"

namespace tessum {

// Passes on what the compositor reports, for as long as it lives. Main thread only.
class WaylandWindows {
 public:
  virtual ~WaylandWindows() = default;

  // The name of the way, for a person.
  [[nodiscard]] virtual std::string way() const = 0;

  // How many round trips it takes to learn of the existing windows.
  [[nodiscard]] virtual int roundTrips() const = 0;

  // Whether the compositor has said that it will report no more.
  [[nodiscard]] virtual bool hasEnded() const = 0;
};

// Each is null where the compositor does not offer the protocol. `connection` and `toplevels` must
// outlive it.

// zwlr_foreign_toplevel_manager_v1: sway and others built on wlroots.
[[nodiscard]] std::unique_ptr<WaylandWindows> openWlrWindows(WaylandConnection& connection,
                                                             WaylandToplevels& toplevels);

// org_kde_plasma_window_management: KDE Plasma.
[[nodiscard]] std::unique_ptr<WaylandWindows> openPlasmaWindows(WaylandConnection& connection,
                                                                WaylandToplevels& toplevels);

// The first of them that is offered.
[[nodiscard]] std::unique_ptr<WaylandWindows> openWindows(WaylandConnection& connection,
                                                          WaylandToplevels& toplevels);

// What a person can do when none is offered: a sentence, empty where that is nothing.
[[nodiscard]] std::string remedyForHiddenWindows(const WaylandConnection& connection);

}  // namespace tessum
