#include "core/install/mcp_client.h"

#include <algorithm>

namespace tessum {

struct MCPClient::Entry {
  std::string_view rawValue;
  bool prefersStdio;
  std::string_view configSuffix;  // below the home folder
};

const MCPClient::Entry& MCPClient::entry() const {
  // In the order of the enumerators. Continue's has another name because "continue" is a keyword.
  static constexpr std::array<Entry, 4> kEntries{{
      {"Claude Desktop", true, "/Library/Application Support/Claude/claude_desktop_config.json"},
      {"Cursor", false, "/.cursor/mcp.json"},
      {"Windsurf", false, "/.codeium/windsurf/mcp_config.json"},
      {"Continue", false, "/.continue/config.json"},
  }};
  return kEntries[static_cast<std::size_t>(case_)];
}

const std::array<MCPClient, 4>& MCPClient::allCases() {
  static const std::array<MCPClient, 4> kAllCases{claudeDesktop, cursor, windsurf, continueApp};
  return kAllCases;
}

std::optional<MCPClient> MCPClient::fromRawValue(std::string_view rawValue) {
  const auto& all = allCases();
  const auto found = std::find_if(all.begin(), all.end(), [&](const MCPClient& client) {
    return client.rawValue() == rawValue;
  });
  if (found == all.end()) return std::nullopt;
  return *found;
}

std::string_view MCPClient::rawValue() const {
  return entry().rawValue;
}

std::string_view MCPClient::displayName() const {
  return rawValue();
}

bool MCPClient::prefersStdio() const {
  return entry().prefersStdio;
}

std::string MCPClient::configPath(const Locations& locations) const {
  return locations.homeFolder() + std::string(entry().configSuffix);
}

}  // namespace tessum
