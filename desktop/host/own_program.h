// This program's own file.

#pragma once

#include <string>

#include "core/platform/locations.h"

namespace tessum {

// Its path, to start it again. Throws std::runtime_error where the system does not tell it.
[[nodiscard]] std::string ownProgram(const Locations& locations);

}  // namespace tessum
