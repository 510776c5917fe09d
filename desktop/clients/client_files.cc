#include "desktop/clients/client_files.h"

namespace tessum {
namespace {

std::string fileReadBy(MCPClient client, const Locations& locations) {
  if (client == MCPClient::claudeDesktop) return claudeDesktopFile(locations);
  // Continue reads every JSON file of this folder, and no longer the servers of its config.json;
  // creating that file even prevents its first-time setup.
  if (client == MCPClient::continueApp) {
    return locations.homeFolder() + "/.continue/mcpServers/tessum.json";
  }
  return client.configPath(locations);
}

}  // namespace

std::vector<std::string> clientFiles(MCPClient client, const Locations& locations) {
  std::vector<std::string> files{fileReadBy(client, locations)};
  std::string catalogued = client.configPath(locations);
  if (catalogued != files.front()) files.push_back(std::move(catalogued));
  return files;
}

}  // namespace tessum
