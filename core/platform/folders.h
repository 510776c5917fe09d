// Folders of the user's own data.

#pragma once

#include <string>

namespace tessum {

// Creates `path` and the folders above it that are missing, for the user alone (0700). A folder
// that exists is left as it is. Throws std::system_error that names the folder. Any thread.
void createPrivateFolders(const std::string& path);

}  // namespace tessum
