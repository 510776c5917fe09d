// The user's editor.

#pragma once

#include <string>

namespace tessum {

// Opens the file at `path` in the program named by the variable EDITOR, or else in vi, on this
// program's terminal, and waits until it exits. The variable may include options. False when the
// editor failed. Throws std::system_error when it cannot be started.
[[nodiscard]] bool editFile(const std::string& path);

}  // namespace tessum
