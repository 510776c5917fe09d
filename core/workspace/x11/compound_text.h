// Texts of X11 clients that are not UTF-8.

#pragma once

#include <string>
#include <string_view>

namespace tessum {

// Converts X11's Compound Text, which switches character sets with escape sequences, to UTF-8.
// Malformed input and characters of unsupported sets become U+FFFD. Any thread.
[[nodiscard]] std::string utf8FromCompoundText(std::string_view bytes);

}  // namespace tessum
