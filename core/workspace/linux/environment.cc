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

std::vector<std::string> systemDataFolders() {
  return dataFolders(environment("XDG_DATA_HOME", SystemLocations().homeFolder() + "/.local/share"),
                     environment("XDG_DATA_DIRS", kUsualDataFolders));
}

DesktopEntries systemDesktopEntries() {
  const auto locale = environment("LC_ALL", environment("LC_MESSAGES", environment("LANG")));
  std::vector<std::string> folders;
  for (const auto& folder : systemDataFolders()) folders.push_back(folder + "/applications");
  return {folders, localeSuffixes(locale)};
}

}  // namespace tessum
