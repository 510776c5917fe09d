// Marks files that come from the network.

#pragma once

#include <string>

namespace tessum {

// Has the system check the signature of what is in the file at `path` before any of it runs. False
// when the system does not do that, or the file cannot be marked. Any thread.
[[nodiscard]] bool quarantine(const std::string& path);

}  // namespace tessum
