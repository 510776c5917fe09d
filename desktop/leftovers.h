// What earlier runs left behind when they were killed.

#pragma once

#include "core/platform/locations.h"

namespace tessum {

// Removes the hidden files of unfinished replacements beside the files that this program writes:
// in the data folder, beside the settings, and beside the assistants' configuration. Those of
// processes that still run stay. Throws nothing.
void removeLeftovers(const Locations& locations);

}  // namespace tessum
