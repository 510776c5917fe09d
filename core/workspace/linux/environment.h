// What the environment of the program says about its desktop.

#pragma once

#include <string>
#include <vector>

#include "core/workspace/linux/desktop_entries.h"

namespace tessum {

// The value of a variable; an empty one counts as not set.
[[nodiscard]] std::string environment(const char* name, const std::string& otherwise = "");

// The folders that hold what programs install for all desktops, the user's first.
[[nodiscard]] std::vector<std::string> systemDataFolders();

// The entries of the user and of the system, in the user's language.
[[nodiscard]] DesktopEntries systemDesktopEntries();

}  // namespace tessum
