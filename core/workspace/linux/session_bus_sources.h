// The desktops whose compositor reports over the session bus what it does not offer over Wayland.

#pragma once

#include "core/workspace/desktop_sources.h"

namespace tessum {

// Sources for the first of them that is on the bus now. Without one, both are null. Asks the bus,
// and waits for its answer a few seconds at most. Otherwise as openDesktopSources().
[[nodiscard]] DesktopSources openSessionBusSources(SystemMainLoop& loop, const SteadyClock& clock,
                                                   WorkspaceNoticeHandler notice);

}  // namespace tessum
