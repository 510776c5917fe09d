// Reads settings from their text, which is TOML.

#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "desktop/settings/settings.h"

namespace tessum {

// What is wrong with settings, and where, as a person reads it.
class SettingsError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws SettingsError at whatever is not understood, unknown keys included: a rule with a slip of
// the pen would else hide nothing.
[[nodiscard]] Settings readSettings(std::string_view text);

}  // namespace tessum
