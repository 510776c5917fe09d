// The user's permission to see the titles of other applications' windows.

#pragma once

namespace tessum {

// Whether this program has it; always so on systems without such a permission. Asks nobody.
[[nodiscard]] bool mayReadTitles();

}  // namespace tessum
