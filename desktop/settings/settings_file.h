// The settings file.

#pragma once

#include <string>
#include <string_view>

#include "core/platform/files.h"
#include "core/platform/locations.h"
#include "desktop/settings/settings.h"

namespace tessum {

// The path of the settings; the file need not exist.
[[nodiscard]] std::string settingsPath(const Locations& locations);

// The settings in force; the defaults without a file. Throws SettingsError, which includes the
// path, when the file cannot be read or is invalid.
[[nodiscard]] Settings loadSettings(const Locations& locations, const Files& files);

// A template: every setting with a comment, and a rule that hides browsers' private windows.
[[nodiscard]] std::string_view settingsTemplate();

}  // namespace tessum
