// Reports the window in front on X11.

#pragma once

#include <memory>
#include <string>

#include "core/workspace/desktop_sources.h"
#include "core/workspace/linux/desktop_entries.h"

namespace tessum {

// Watches `display`, such as ":0", through the properties its window manager publishes. The
// connection's descriptor drives it; it does not poll. Otherwise as openDesktopSources().
[[nodiscard]] std::unique_ptr<FrontSource> openX11FrontSource(SystemMainLoop& loop,
                                                              const SteadyClock& clock,
                                                              const std::string& display,
                                                              DesktopEntries entries,
                                                              WorkspaceNoticeHandler notice);

}  // namespace tessum
