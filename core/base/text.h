// Text from outside: converted to UTF-8, made valid, trimmed, and put into lower case.

#pragma once

#include <string>
#include <string_view>

namespace tessum {

// Some programs begin a file of UTF-8 with it.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Appends `bytes` with each maximal ill-formed sequence replaced by U+FFFD, as the Unicode
// Standard recommends; well-formed text is appended as it is.
void appendValidUtf8(std::string& out, std::string_view bytes);

// `bytes` made valid in the same way.
[[nodiscard]] std::string validUtf8(std::string_view bytes);

// `bytes` of ISO 8859-1 as UTF-8.
[[nodiscard]] std::string utf8FromLatin1(std::string_view bytes);

// The part of valid UTF-8 `text` without leading and trailing white space: tab, U+000A to
// U+000D, U+0085, U+2028, U+2029 and the space separators. It refers into `text`.
[[nodiscard]] std::string_view trimWhiteSpace(std::string_view text);

// The part of `text` without leading and trailing spaces and tabs. It refers into `text`.
[[nodiscard]] std::string_view trimBlanks(std::string_view text);

// `text` with the letters A to Z in lower case.
[[nodiscard]] std::string lowerCaseAscii(std::string_view text);

}  // namespace tessum
