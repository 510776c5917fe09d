// Window titles of other applications on macOS.

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tessum {

// The title of the focused window of the process, as it is. Absent when the process has no such
// window or does not respond, the title is no text, or the user has not let this program see it; it
// does not ask for permission. Main thread only.
[[nodiscard]] std::optional<std::string> focusedWindowTitleOf(std::int32_t process);

}  // namespace tessum
