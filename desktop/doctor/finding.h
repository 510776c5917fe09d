// What the doctor finds, and where it looks.

#pragma once

#include <string>
#include <vector>

#include "desktop/command.h"

namespace tessum {

// One thing that was looked at.
struct Finding {
  std::string text;
  std::string remedy;  // how to mend it; empty where nothing is wrong

  [[nodiscard]] bool isProblem() const { return !remedy.empty(); }
};

// Each looks at one thing and changes nothing. What cannot be looked at is a finding too.
[[nodiscard]] std::vector<Finding> checkFolder(const Host& host);
[[nodiscard]] std::vector<Finding> checkHistory(const Host& host);
[[nodiscard]] std::vector<Finding> checkWorkspace();
[[nodiscard]] std::vector<Finding> checkClients(const Host& host);
[[nodiscard]] std::vector<Finding> checkEndpoint();

}  // namespace tessum
