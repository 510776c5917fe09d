// Reads window titles of other applications on macOS.

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tessum {

// The title of the process's focused window, unchanged. Absent when the process has no such window
// or does not respond, the title is not text, or the user has not allowed this program to see it;
// never asks for permission. Main thread only.
[[nodiscard]] std::optional<std::string> focusedWindowTitleOf(std::int32_t process);

}  // namespace tessum
