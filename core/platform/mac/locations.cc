#include "core/platform/locations.h"

#include <mach-o/dyld.h>
#include <sysdir.h>

#include <climits>
#include <cstdint>
#include <filesystem>
#include <system_error>

#include "core/base/check.h"

namespace tessum {

std::string SystemLocations::configFolder() const {
  char path[PATH_MAX];
  auto state = sysdir_start_search_path_enumeration(SYSDIR_DIRECTORY_APPLICATION_SUPPORT,
                                                    SYSDIR_DOMAIN_MASK_USER);
  state = sysdir_get_next_search_path_enumeration(state, path);
  TESSUM_CHECK(state != 0, "the user has no folder for application support");
  std::string folder = path;
  if (folder.starts_with('~')) folder.replace(0, 1, homeFolder());
  return folder;
}

// One folder serves for settings and data alike on this system.
std::string SystemLocations::dataFolder() const {
  return configFolder() + "/Tessum";
}

std::optional<std::string> SystemLocations::executablePath() const {
  char path[PATH_MAX];
  std::uint32_t size = sizeof path;
  if (_NSGetExecutablePath(path, &size) != 0) return std::nullopt;
  // The path as the program was started; what lies beside the program lies beside its real file.
  std::error_code error;
  const auto real = std::filesystem::canonical(path, error);
  return error ? std::string(path) : real.string();
}

}  // namespace tessum
