// The assistant applications that Tessum can be registered with.

#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/platform/locations.h"

namespace tessum {

// One application of the fixed catalogue. Immutable.
class MCPClient {
 public:
  enum class Case { claudeDesktop, cursor, windsurf, continueApp };
  using enum Case;

  MCPClient(Case clientCase) : case_(clientCase) {}

  // The application of that raw value, compared exactly; absent for any other text.
  [[nodiscard]] static std::optional<MCPClient> fromRawValue(std::string_view rawValue);

  // Every application, in display order.
  [[nodiscard]] static const std::array<MCPClient, 4>& allCases();

  // The application's name for programs, and its display name.
  [[nodiscard]] std::string_view rawValue() const;
  [[nodiscard]] std::string_view displayName() const;

  // Whether the application should start the stdio server rather than use the URL of the HTTP
  // endpoint.
  [[nodiscard]] bool prefersStdio() const;

  // The absolute path of the application's configuration file, whether or not it exists. Computed
  // at each call.
  [[nodiscard]] std::string configPath(const Locations& locations) const;

  friend bool operator==(const MCPClient&, const MCPClient&) = default;
  friend struct std::hash<MCPClient>;

 private:
  struct Entry;

  [[nodiscard]] const Entry& entry() const;

  Case case_;
};

}  // namespace tessum

template <>
struct std::hash<tessum::MCPClient> {
  std::size_t operator()(const tessum::MCPClient& client) const {
    return std::hash<tessum::MCPClient::Case>()(client.case_);
  }
};
