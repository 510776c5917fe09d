#include "core/platform/locations.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tessum {
namespace {

// The XDG rules: a value that is not an absolute path is to be ignored.
std::optional<std::string> xdgFolder(const char* variable) {
  const char* folder = std::getenv(variable);
  if (folder == nullptr || *folder != '/') return std::nullopt;
  std::string path = folder;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

}  // namespace

std::string SystemLocations::dataFolder() const {
  const auto dataHome = xdgFolder("XDG_DATA_HOME");
  return (dataHome ? *dataHome : homeFolder() + "/.local/share") + "/Tessum";
}

std::string SystemLocations::configFolder() const {
  const auto configHome = xdgFolder("XDG_CONFIG_HOME");
  return configHome ? *configHome : homeFolder() + "/.config";
}

std::optional<std::string> SystemLocations::executablePath() const {
  std::error_code error;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return std::nullopt;
  return path.string();
}

}  // namespace tessum
