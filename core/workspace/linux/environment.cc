#include "core/workspace/linux/environment.h"

#include <cstdlib>

#include "core/platform/locations.h"

namespace tessum {
namespace {

constexpr const char* kUsualDataFolders = "/usr/local/share:/usr/share";

}  // namespace

std::string environment(const char* name, const std::string& otherwise) {
  const char* value = std::getenv(name);
  return value == nullptr || *value == '\0' ? otherwise : value;
}

DesktopEntries systemDesktopEntries() {
  const auto dataHome =
      environment("XDG_DATA_HOME", SystemLocations().homeFolder() + "/.local/share");
  const auto locale = environment("LC_ALL", environment("LC_MESSAGES", environment("LANG")));
  return {applicationFolders(dataHome, environment("XDG_DATA_DIRS", kUsualDataFolders)),
          localeSuffixes(locale)};
}

}  // namespace tessum
