// What earlier runs left behind when they were killed.

#pragma once

#include "desktop/host/host.h"

namespace tessum {

// Removes the hidden files of unfinished replacements beside the files that this program writes:
// in the data folder, beside the settings, and beside the files that install and setup write or
// have written. Those of processes that still run stay. Throws nothing.
void removeLeftovers(const Host& host);

}  // namespace tessum
