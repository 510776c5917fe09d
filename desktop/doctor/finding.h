// The doctor's checks and their results.

#pragma once

#include <string>
#include <vector>

#include "desktop/host/host.h"

namespace tessum {

// The result of one check.
struct Finding {
  std::string text;
  std::string remedy;         // what to do about it; empty when there is nothing to do
  bool isAdviceOnly = false;  // nothing is wrong, but the remedy may be wanted

  [[nodiscard]] bool isProblem() const { return !remedy.empty() && !isAdviceOnly; }
};

// Each check changes nothing. A check that cannot run is a finding, too.
[[nodiscard]] std::vector<Finding> checkSetup(const Host& host);
[[nodiscard]] std::vector<Finding> checkFolder(const Host& host);
[[nodiscard]] std::vector<Finding> checkHistory(const Host& host);
[[nodiscard]] std::vector<Finding> checkWorkspace();
[[nodiscard]] std::vector<Finding> checkClients(const Host& host);
[[nodiscard]] std::vector<Finding> checkEndpoint();

}  // namespace tessum
