// The configuration files that the assistant applications actually read.
//
// The catalogue has one path for each application on every system. Two applications have since
// moved theirs, and only an entry in a file that is read has an effect.

#pragma once

#include <string>
#include <vector>

#include "core/install/mcp_client.h"
#include "core/platform/locations.h"

namespace tessum {

// Every file that may hold our entry for `client`: first the one that the application reads, then
// the catalogue's if it differs.
[[nodiscard]] std::vector<std::string> clientFiles(MCPClient client, const Locations& locations);

// The file that Claude Desktop reads on this system.
[[nodiscard]] std::string claudeDesktopFile(const Locations& locations);

}  // namespace tessum
