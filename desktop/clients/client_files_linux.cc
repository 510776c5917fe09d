#include <cstdlib>
#include <string>

#include "desktop/clients/client_files.h"

namespace tessum {
namespace {

// The XDG rules: a value that is not an absolute path is to be ignored.
std::string configFolder(const Locations& locations) {
  const char* folder = std::getenv("XDG_CONFIG_HOME");
  if (folder != nullptr && *folder == '/') return folder;
  return locations.homeFolder() + "/.config";
}

}  // namespace

std::string claudeDesktopFile(const Locations& locations) {
  return configFolder(locations) + "/Claude/claude_desktop_config.json";
}

}  // namespace tessum
