// Texts of X11 clients that are not UTF-8.

#pragma once

#include <string>
#include <string_view>

namespace tessum {

// X11's Compound Text, which changes its character set with escape sequences, as UTF-8. What has
// no meaning or belongs to a set unknown here becomes U+FFFD. Any thread.
[[nodiscard]] std::string utf8FromCompoundText(std::string_view bytes);

}  // namespace tessum
