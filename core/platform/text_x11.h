// Texts of X11 clients that are not UTF-8.

#pragma once

#include <string>
#include <string_view>

namespace tessum {

// ISO 8859-1, the encoding of properties of type STRING, as UTF-8. Any thread.
[[nodiscard]] std::string utf8FromLatin1(std::string_view bytes);

// X11's Compound Text, which changes its character set with escape sequences, as UTF-8. What has
// no meaning or belongs to a set unknown here becomes U+FFFD. Any thread.
[[nodiscard]] std::string utf8FromCompoundText(std::string_view bytes);

}  // namespace tessum
