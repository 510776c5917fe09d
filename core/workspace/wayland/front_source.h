// What is in front on a Wayland desktop whose compositor reports its windows.

#pragma once

#include <memory>

#include "core/workspace/desktop_sources.h"
#include "core/workspace/linux/desktop_entries.h"
#include "core/workspace/wayland/connection.h"

namespace tessum {

// Watches the windows that the compositor reports, in the first way that it offers. Null where it
// offers none. The rest is as with openDesktopSources().
[[nodiscard]] std::unique_ptr<FrontSource> openWaylandFrontSource(
    SystemMainLoop& loop, const SteadyClock& clock, std::shared_ptr<WaylandConnection> connection,
    DesktopEntries entries, WorkspaceNoticeHandler notice);

}  // namespace tessum
