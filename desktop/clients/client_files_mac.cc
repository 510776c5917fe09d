#include "desktop/clients/client_files.h"

namespace tessum {

std::string claudeDesktopFile(const Locations& locations) {
  return MCPClient(MCPClient::claudeDesktop).configPath(locations);
}

}  // namespace tessum
