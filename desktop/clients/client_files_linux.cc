#include "desktop/clients/client_files.h"

namespace tessum {

std::string claudeDesktopFile(const Locations& locations) {
  return locations.configFolder() + "/Claude/claude_desktop_config.json";
}

}  // namespace tessum
