// Which of two versions is newer.

#pragma once

#include <string_view>

namespace tessum {

// Whether version `a` is strictly newer than version `b`. Both are lists of numbers with dots
// between them, compared from the left; missing numbers at the end count as 0. A piece that is not
// a whole number of at most 64 bits is dropped: 1.2.3-beta counts as 1.2. Any thread.
[[nodiscard]] bool isNewer(std::string_view a, std::string_view b);

// The version that a release's tag stands for: the tag without one leading lower-case "v". It
// refers into `tag`.
[[nodiscard]] std::string_view versionOfTag(std::string_view tag);

}  // namespace tessum
