// The time without input on macOS.

#pragma once

namespace tessum {

// The seconds since the user last touched keyboard, mouse or trackpad. Needs no permission. Any
// thread.
[[nodiscard]] double secondsSinceInput();

}  // namespace tessum
