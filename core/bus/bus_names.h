// Who is on a message bus.

#pragma once

#include <set>
#include <string>

#include "core/bus/bus.h"

namespace tessum {

// The well-known names that programs have now, for choices that are made once. Waits for the bus,
// two seconds at most; empty where there is none or it does not answer. Any thread.
[[nodiscard]] std::set<std::string> namesOnBus(Bus::Kind kind);

}  // namespace tessum
