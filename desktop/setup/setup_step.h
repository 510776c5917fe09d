// One thing that setup does, or takes back.

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "desktop/setup/setup_changes.h"

namespace tessum {

struct SetupStep {
  std::string plan;                  // what it does, as "start recording now"
  std::vector<std::string> details;  // of the plan, each a line
  // To a file of another's, as lines of "diff -u"; or why that file cannot be changed.
  std::vector<std::string> difference = {};
  // Does it, and notes what it changes. Throws what the system refuses, as std::system_error or
  // std::runtime_error.
  std::function<void(SetupChanges& changes)> carryOut;
};

}  // namespace tessum
