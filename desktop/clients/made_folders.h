// Folders that are made for a file, and go when the file goes.

#pragma once

#include <string>
#include <vector>

namespace tessum {

// The folders that are missing for `path`, itself included, outermost first.
[[nodiscard]] std::vector<std::string> missingFolders(const std::string& path);

// Removes those of `folders`, outermost first, that are empty. A folder that cannot be removed is
// no error: it is somebody's by now.
void removeEmptyFolders(const std::vector<std::string>& folders);

}  // namespace tessum
