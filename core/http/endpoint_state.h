// Finds out what listens on the port of our HTTP endpoint.

#pragma once

namespace tessum {

enum class EndpointState {
  answers,  // our endpoint
  silent,   // nothing
  taken     // another program
};

// Sends a request, and may wait a few seconds for the response. Any thread.
[[nodiscard]] EndpointState endpointState();

}  // namespace tessum
