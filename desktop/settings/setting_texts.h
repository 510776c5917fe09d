// The settings as a person reads them.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desktop/settings/settings.h"

namespace tessum {

// What hides, and when: "app 'Bank' on sat sun".
[[nodiscard]] std::string ruleText(const HideRule& rule);

// One setting or rule.
struct SettingLine {
  std::string name;  // as in the file
  std::string value;
  int line = 0;                        // of the file; 0 when the file does not set it
  std::optional<double> seconds = {};  // of a duration
};

// All of them, the rules in their order.
[[nodiscard]] std::vector<SettingLine> settingLines(const Settings& settings);

}  // namespace tessum
