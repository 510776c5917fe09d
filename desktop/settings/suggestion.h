// Suggestions for misspelled words.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// "; did you mean "title"?" with the one of `words` closest to `word`, or an empty text when none
// is close.
[[nodiscard]] std::string suggestion(std::string_view word,
                                     const std::vector<std::string_view>& words);

}  // namespace tessum
