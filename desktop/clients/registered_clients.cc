#include "desktop/clients/registered_clients.h"

#include <system_error>

#include "core/install/mcp_client.h"
#include "desktop/clients/client_files.h"
#include "desktop/clients/config_file.h"

namespace tessum {

std::vector<std::string> registeredClients(const Host& host) {
  std::vector<std::string> names;
  for (const MCPClient client : MCPClient::allCases()) {
    const std::string file = clientFiles(client, host.locations).front();
    try {
      const ConfigFile config = lookAt(host.files, file);
      if (config.object && tessumEntry(*config.object) != nullptr) {
        names.emplace_back(client.displayName());
      }
    } catch (const std::system_error&) {
    }
  }
  return names;
}

}  // namespace tessum
