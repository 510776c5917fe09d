// What the doctor finds.

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
[[nodiscard]] std::vector<Finding> checkRecord(const Host& host);
[[nodiscard]] std::vector<Finding> checkDesktop();
[[nodiscard]] std::vector<Finding> checkClients(const Host& host);
[[nodiscard]] std::vector<Finding> checkEndpoint();

// What is at the port of our HTTP endpoint.
enum class EndpointState { answers, silent, taken };
[[nodiscard]] EndpointState endpointState();

// The assistant applications that are registered, by the names to show.
[[nodiscard]] std::vector<std::string> registeredClients(const Host& host);

}  // namespace tessum
