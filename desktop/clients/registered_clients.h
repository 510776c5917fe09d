// Which assistant applications know of Tessum.

#pragma once

#include <string>
#include <vector>

#include "desktop/command.h"

namespace tessum {

// The registered ones, by the names to show. A file that cannot be read registers nobody here; the
// doctor says why.
[[nodiscard]] std::vector<std::string> registeredClients(const Host& host);

}  // namespace tessum
