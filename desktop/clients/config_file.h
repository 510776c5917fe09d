// Backs up an application's configuration file.

#pragma once

#include <string>

#include "core/platform/files.h"

namespace tessum {

// Writes `bytes`, the content of the file at `path`, to a new file beside it and returns the new
// file's path. Throws std::system_error.
[[nodiscard]] std::string keepCopy(const Files& files, const std::string& path,
                                   const std::string& bytes);

}  // namespace tessum
