// What is in front where KWin does not let the program see its windows on Wayland.

#pragma once

#include <memory>

#include "core/bus/bus.h"
#include "core/workspace/desktop_sources.h"
#include "core/workspace/linux/desktop_entries.h"

namespace tessum {

// Has KWin run a script that reports its active window over `session`; nothing is polled. The rest
// is as with openDesktopSources().
[[nodiscard]] std::unique_ptr<FrontSource> openKWinFrontSource(SystemMainLoop& loop,
                                                               const SteadyClock& clock,
                                                               std::shared_ptr<Bus> session,
                                                               DesktopEntries entries,
                                                               WorkspaceNoticeHandler notice);

}  // namespace tessum
