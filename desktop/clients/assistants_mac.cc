#include "desktop/clients/assistants.h"

#include "core/install/mcp_client.h"

namespace tessum {

std::string claudeDesktopFile(const Locations& locations) {
  return MCPClient(MCPClient::claudeDesktop).configPath(locations);
}

std::string visualStudioCodeFolder(const Locations& locations) {
  return locations.configFolder() + "/Code";
}

// Zed keeps its settings where it does on other systems.
std::string zedFolder(const Locations& locations) {
  return locations.homeFolder() + "/.config/zed";
}

}  // namespace tessum
