// Marks files that come from the network.

#pragma once

#include <string>

namespace tessum {

// Marks the file at `path` as coming from the network, so that the system checks the signature of a
// program in it before it runs. False when the system has no such check or the file cannot be
// marked. Any thread.
[[nodiscard]] bool quarantine(const std::string& path);

}  // namespace tessum
