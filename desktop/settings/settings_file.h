// Where the settings lie.

#pragma once

#include <string>
#include <string_view>

#include "core/platform/files.h"
#include "core/platform/locations.h"
#include "desktop/settings/settings.h"

namespace tessum {

// The path of the settings; the file need not exist.
[[nodiscard]] std::string settingsPath(const Locations& locations);

// The settings in force; without a file, the usual ones. Throws SettingsError, with the path in it,
// when the file cannot be read or understood.
[[nodiscard]] Settings loadSettings(const Locations& locations, const Files& files);

// Settings to begin with: what there is, each with a remark, and private windows of browsers
// hidden.
[[nodiscard]] std::string_view settingsTemplate();

}  // namespace tessum
