// Files that need not be there.

#pragma once

#include <optional>
#include <string>

#include "core/platform/files.h"

namespace tessum {

// The bytes of the file at `path`; absent when there is none. Throws as Files::read() does.
[[nodiscard]] std::optional<std::string> readIfThere(const Files& files, const std::string& path);

}  // namespace tessum
