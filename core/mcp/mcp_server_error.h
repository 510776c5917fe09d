// Errors of the engine itself.

#pragma once

#include <cstdint>
#include <string>

#include "core/base/described_error.h"

namespace tessum {

// Immutable.
class MCPServerError : public DescribedError {
 public:
  enum class Case { invalidPort, unknownResource };

  // The transport cannot listen on `port`.
  [[nodiscard]] static MCPServerError invalidPort(std::uint16_t port);

  // There is no resource with that URI.
  [[nodiscard]] static MCPServerError unknownResource(const std::string& uri);

  [[nodiscard]] Case errorCase() const { return case_; }

 private:
  MCPServerError(Case errorCase, std::string description);

  Case case_;
};

}  // namespace tessum
