// Chooses the bodies that fit the session, by what its display servers offer.

#include <string>
#include <utility>

#include "core/workspace/desktop_sources.h"
#include "core/workspace/linux/environment.h"
#include "core/workspace/linux/session_bus_sources.h"
#include "core/workspace/wayland/front_source.h"
#include "core/workspace/wayland/idle_source.h"
#include "core/workspace/wayland/windows.h"
#include "core/workspace/x11/front_source.h"
#include "core/workspace/x11/idle_source.h"

namespace tessum {
namespace {

std::unique_ptr<IdleSource> openX11IdleSource(SystemMainLoop& loop, const SteadyClock& clock,
                                              const std::string& display) {
  auto counter = openX11IdleCounter(loop, clock, display);
  return counter ? std::move(counter) : openX11IdlePoll(loop, clock, display);
}

// Null when no compositor listens, as where the variable is left over from an earlier session.
std::shared_ptr<WaylandConnection> openWayland(SystemMainLoop& loop, const SteadyClock& clock) {
  const auto display = environment("WAYLAND_DISPLAY");
  return display.empty() ? nullptr : WaylandConnection::open(loop, clock, display);
}

std::string noDisplay() {
  const auto wayland = environment("WAYLAND_DISPLAY");
  return wayland.empty() ? "There is no X11 display: DISPLAY is not set."
                         : "Cannot connect to the Wayland display " + wayland + ".";
}

}  // namespace

DesktopSources openDesktopSources(SystemMainLoop& loop, const SteadyClock& clock,
                                  WorkspaceNoticeHandler notice) {
  const auto display = environment("DISPLAY");
  const auto wayland = openWayland(loop, clock);
  DesktopSources sources;
  if (wayland) {
    // Input that goes to other windows is unknown to X11, so it cannot tell that there is none.
    sources.idle = openWaylandIdleSource(clock, wayland);
    sources.front = openWaylandFrontSource(loop, clock, wayland, systemDesktopEntries(), notice);
    if (sources.front) return sources;
    if (auto overBus = openSessionBusSources(loop, clock, notice); overBus.front) {
      if (!overBus.idle) overBus.idle = std::move(sources.idle);
      return overBus;
    }
    const auto remedy = remedyForHiddenWindows(*wayland);
    if (display.empty()) {
      throw WorkspaceUnavailable(
          "This is a Wayland session without X11: the focused window cannot be seen here." +
          (remedy.empty() ? "" : " " + remedy));
    }
    notice({.text = "This is a Wayland session: only windows of X11 applications can be seen.",
            .remedy = remedy});
  } else if (display.empty()) {
    throw WorkspaceUnavailable(noDisplay());
  } else {
    sources.idle = openX11IdleSource(loop, clock, display);
  }
  sources.front = openX11FrontSource(loop, clock, display, systemDesktopEntries(), notice);
  return sources;
}

}  // namespace tessum
