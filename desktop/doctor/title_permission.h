// The user's permission to see the titles of other applications' windows.

#pragma once

namespace tessum {

// Whether this program has it; always true on systems without such a permission. Does not ask the
// user.
[[nodiscard]] bool mayReadTitles();

}  // namespace tessum
