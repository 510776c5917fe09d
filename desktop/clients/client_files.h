// Where the assistant applications really read their configuration.
//
// The catalogue has one place for each application on every system. Two of them read another one
// by now, and an entry is worth something only where it is read.

#pragma once

#include <string>
#include <vector>

#include "core/install/mcp_client.h"
#include "core/platform/locations.h"

namespace tessum {

// Every file that may hold our entry for `client`: first the one that the application reads, then
// that of the catalogue where it is another.
[[nodiscard]] std::vector<std::string> clientFiles(MCPClient client, const Locations& locations);

// The file that Claude Desktop reads on this system.
[[nodiscard]] std::string claudeDesktopFile(const Locations& locations);

}  // namespace tessum
