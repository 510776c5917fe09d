#include "desktop/host/optional_file.h"

#include <system_error>

namespace tessum {

std::optional<std::string> readIfThere(const Files& files, const std::string& path) {
  try {
    return files.read(path);
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
    throw;
  }
}

}  // namespace tessum
