// What is in front on an X11 desktop.

#pragma once

#include <memory>
#include <string>

#include "core/workspace/desktop_sources.h"
#include "core/workspace/linux/desktop_entries.h"

namespace tessum {

// Watches the desktop on `display`, such as ":0", through what its window manager publishes; the
// connection's descriptor drives it, and nothing is polled. The rest is as with
// openDesktopSources().
[[nodiscard]] std::unique_ptr<FrontSource> openX11FrontSource(SystemMainLoop& loop,
                                                              const SteadyClock& clock,
                                                              const std::string& display,
                                                              DesktopEntries entries,
                                                              WorkspaceNoticeHandler notice);

}  // namespace tessum
