// How a person looks for a text.

#pragma once

#include <string>

#include "core/store/history.h"

namespace tessum {

// Whether texts hold `part`, which is UTF-8, in capital or small letters: two letters are alike
// when Unicode's simple case folding makes them the same. No character of `part` has a meaning of
// its own. Throws std::invalid_argument when it is too long to look for.
[[nodiscard]] TextTest holding(const std::string& part);

}  // namespace tessum
