// TessumMCP as this build made it.

#pragma once

#include <string>

namespace tessum {

[[nodiscard]] std::string serverProgram();

}  // namespace tessum
