// The assistant applications that Tessum is registered with.

#pragma once

#include <string>
#include <vector>

#include "desktop/host/host.h"

namespace tessum {

// Their display names. A file that cannot be read counts as not registered; the doctor reports the
// reason.
[[nodiscard]] std::vector<std::string> registeredClients(const Host& host);

}  // namespace tessum
