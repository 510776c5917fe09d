// Files and folders that only the user may access.

#pragma once

#include <string>
#include <vector>

namespace tessum {

// Creates `path` and the folders above it that are missing, for the user alone (0700). A folder
// that exists is left as it is. Throws std::system_error that names the folder. Any thread.
void createPrivateFolders(const std::string& path);

// Makes an empty file at `path` for the user alone (0600), whatever the umask, where there is none.
// A failure is not reported: whoever opens the file meets it too. Any thread.
void createPrivateFile(const std::string& path);

// The paths of the user's files in `folder` that others may read or write, in the order of their
// names; folders and symbolic links are left out. None where the folder cannot be listed. Any
// thread.
[[nodiscard]] std::vector<std::string> filesOpenToOthers(const std::string& folder);

// Takes every right to the file at `path` from all but the user. Opens no file, so locks on it
// stay. Throws std::system_error with the path in the text. Any thread.
void closeToOthers(const std::string& path);

}  // namespace tessum
