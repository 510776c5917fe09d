#include "core/mcp/mcp_server_error.h"

#include <utility>

namespace tessum {

MCPServerError::MCPServerError(Case errorCase, std::string description)
    : DescribedError(std::move(description)), case_(errorCase) {}

MCPServerError MCPServerError::invalidPort(std::uint16_t port) {
  return {Case::invalidPort, "Invalid port number: " + std::to_string(port)};
}

MCPServerError MCPServerError::unknownResource(const std::string& uri) {
  return {Case::unknownResource, "Unknown resource URI: " + uri};
}

}  // namespace tessum
