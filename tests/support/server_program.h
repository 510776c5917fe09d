// The path of this build's TessumMCP.

#pragma once

#include <string>

namespace tessum {

[[nodiscard]] std::string serverProgram();

}  // namespace tessum
