// Chooses the bodies that fit the session.

#include <cstdlib>
#include <string>
#include <utility>

#include "core/platform/locations.h"
#include "core/workspace/desktop_sources.h"
#include "core/workspace/x11/front_source.h"
#include "core/workspace/x11/idle_source.h"

namespace tessum {
namespace {

constexpr const char* kUsualDataFolders = "/usr/local/share:/usr/share";

// The value of a variable; an empty one counts as not set.
std::string environment(const char* name, const std::string& otherwise = "") {
  const char* value = std::getenv(name);
  return value == nullptr || *value == '\0' ? otherwise : value;
}

DesktopEntries systemDesktopEntries() {
  const auto dataHome =
      environment("XDG_DATA_HOME", SystemLocations().homeFolder() + "/.local/share");
  const auto locale = environment("LC_ALL", environment("LC_MESSAGES", environment("LANG")));
  return {applicationFolders(dataHome, environment("XDG_DATA_DIRS", kUsualDataFolders)),
          localeSuffixes(locale)};
}

std::unique_ptr<IdleSource> openX11IdleSource(SystemMainLoop& loop, const SteadyClock& clock,
                                              const std::string& display) {
  auto counter = openX11IdleCounter(loop, clock, display);
  return counter ? std::move(counter) : openX11IdlePoll(loop, clock, display);
}

}  // namespace

DesktopSources openDesktopSources(SystemMainLoop& loop, const SteadyClock& clock,
                                  WorkspaceNoticeHandler notice) {
  const bool isWayland = !environment("WAYLAND_DISPLAY").empty();
  const auto display = environment("DISPLAY");
  if (display.empty()) {
    throw WorkspaceUnavailable(
        isWayland ? "This is a Wayland session without X11: the focused window cannot be seen here."
                  : "There is no X11 display: DISPLAY is not set.");
  }
  DesktopSources sources;
  sources.front = openX11FrontSource(loop, clock, display, systemDesktopEntries(), notice);
  if (isWayland) {
    // Input that goes to other windows is unknown to X11, so it cannot tell that there is none.
    notice({"This is a Wayland session: only windows of X11 applications can be seen.", false});
  } else {
    sources.idle = openX11IdleSource(loop, clock, display);
  }
  return sources;
}

}  // namespace tessum
