// The workspace of an X11 desktop.

#pragma once

#include <memory>
#include <string>

#include "core/workspace/linux/desktop_entries.h"
#include "core/workspace/system_workspace.h"

namespace tessum {

// Watches the desktop on `display`, such as ":0", through what its window manager publishes; the
// connection's descriptor drives it, and nothing is polled. The rest is as with
// openSystemWorkspace().
[[nodiscard]] std::unique_ptr<Workspace> openX11Workspace(SystemMainLoop& loop,
                                                          const std::string& display,
                                                          DesktopEntries entries,
                                                          WorkspaceNoticeHandler notice);

}  // namespace tessum
