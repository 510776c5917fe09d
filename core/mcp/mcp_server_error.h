// Errors of the engine itself. Their what() is the description for people and clients.

#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tessum {

class MCPServerError : public std::runtime_error {
 public:
  enum class Case { invalidPort, unknownResource };

  // The transport cannot listen on `port`.
  [[nodiscard]] static MCPServerError invalidPort(std::uint16_t port);

  // There is no resource of that URI.
  [[nodiscard]] static MCPServerError unknownResource(const std::string& uri);

  [[nodiscard]] Case errorCase() const { return case_; }

 private:
  MCPServerError(Case errorCase, const std::string& description);

  Case case_;
};

}  // namespace tessum
