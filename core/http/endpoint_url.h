// Where clients on this computer reach the endpoint.

#pragma once

#include <cstdint>
#include <string>

#include "core/base/limits.h"

namespace tessum {

// The path that takes messages.
inline constexpr char kEndpointPath[] = "/mcp";

// For example "http://localhost:7384/mcp".
[[nodiscard]] inline std::string endpointURL(std::uint16_t port) {
  return "http://localhost:" + std::to_string(port) + kEndpointPath;
}

// The URL of our endpoint on its usual port.
[[nodiscard]] inline std::string usualEndpointURL() {
  return endpointURL(limits::kDefaultPort);
}

}  // namespace tessum
