// What is in front in a Wayland session of GNOME.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/bus/bus.h"
#include "core/workspace/desktop_sources.h"
#include "core/workspace/linux/desktop_entries.h"

namespace tessum {

// Listens to our extension of GNOME Shell over `session`; nothing is polled. While the shell does
// not run the extension nothing is in front, and the notices say why. `dataFolders` hold
// gnome-shell/extensions. The rest is as with openDesktopSources().
[[nodiscard]] std::unique_ptr<FrontSource> openGnomeFrontSource(
    SystemMainLoop& loop, const SteadyClock& clock, std::shared_ptr<Bus> session,
    DesktopEntries entries, std::vector<std::string> dataFolders, WorkspaceNoticeHandler notice);

}  // namespace tessum
