// Reads settings from their text, which is TOML.

#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "desktop/settings/settings.h"

namespace tessum {

// Says what is wrong with the settings, and where, for a person.
class SettingsError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws SettingsError for anything invalid, including unknown keys; otherwise a misspelled rule
// would hide nothing.
[[nodiscard]] Settings readSettings(std::string_view text);

}  // namespace tessum
