// The user's editor.

#pragma once

#include <string>

namespace tessum {

// Opens the file at `path` in the program that the variable EDITOR names, vi without one, with this
// program's terminal, and waits for its end. The variable may hold options. False when the editor
// failed. Throws std::system_error when nothing can be started.
[[nodiscard]] bool editFile(const std::string& path);

}  // namespace tessum
