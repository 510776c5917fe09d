#include "desktop/clients/assistants.h"

namespace tessum {

std::string claudeDesktopFile(const Locations& locations) {
  return locations.configFolder() + "/Claude/claude_desktop_config.json";
}

std::string visualStudioCodeFolder(const Locations& locations) {
  return locations.configFolder() + "/Code";
}

std::string zedFolder(const Locations& locations) {
  return locations.configFolder() + "/zed";
}

}  // namespace tessum
