// What some desktops need before they let the recorder see their windows: an extension of GNOME
// Shell, or a desktop entry for KDE Plasma.

#pragma once

#include <string>
#include <vector>

#include "desktop/host/host.h"
#include "desktop/setup/setup_step.h"

namespace tessum {

// What is left to do on the desktop that runs now; nothing where it needs nothing. May wait a few
// seconds for the session's message bus.
[[nodiscard]] std::vector<SetupStep> desktopHelperSteps(const Host& host);

// Turns off an extension of GNOME Shell. Throws std::runtime_error when the desktop's settings
// cannot be changed.
void turnOffShellExtension(const std::string& extension);

}  // namespace tessum
