// Chooses the body that fits the session. Another one, for a Wayland compositor that lets the
// focused window be seen, would be tried here before the others.

#include <cstdlib>
#include <string>

#include "core/platform/locations.h"
#include "core/workspace/system_workspace.h"
#include "core/workspace/x11/x11_workspace.h"

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

}  // namespace

std::unique_ptr<Workspace> openSystemWorkspace(SystemMainLoop& loop,
                                               WorkspaceNoticeHandler notice) {
  const bool isWayland = !environment("WAYLAND_DISPLAY").empty();
  const auto display = environment("DISPLAY");
  if (display.empty()) {
    throw WorkspaceUnavailable(
        isWayland ? "This is a Wayland session without X11: the focused window cannot be seen here."
                  : "There is no X11 display: DISPLAY is not set.");
  }
  auto workspace = openX11Workspace(loop, display, systemDesktopEntries(), notice);
  if (isWayland) {
    notice({"This is a Wayland session: only windows of X11 applications can be seen.", false});
  }
  return workspace;
}

}  // namespace tessum
