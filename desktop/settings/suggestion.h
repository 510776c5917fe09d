// Words that were meant.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// "; did you mean "title"?" with the one of `words` that is nearest to `word`, or an empty text
// when none is near.
[[nodiscard]] std::string suggestion(std::string_view word,
                                     const std::vector<std::string_view>& words);

}  // namespace tessum
