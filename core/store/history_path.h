// Where the history is.

#pragma once

#include <string>

#include "core/platform/locations.h"

namespace tessum {

// The database in the folder of the data, whether it exists or not. Propagates what
// Locations::dataFolder() throws.
[[nodiscard]] inline std::string historyPath(const Locations& locations) {
  return locations.dataFolder() + "/activities.db";
}

}  // namespace tessum
