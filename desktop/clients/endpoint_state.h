// What answers at the port of our HTTP endpoint.

#pragma once

#include <string>

namespace tessum {

enum class EndpointState {
  answers,  // our endpoint
  silent,   // nothing
  taken     // another program
};

// Asks, and may wait a few seconds for an answer. Any thread.
[[nodiscard]] EndpointState endpointState();

// The URL of our endpoint on its usual port.
[[nodiscard]] std::string usualEndpointURL();

}  // namespace tessum
