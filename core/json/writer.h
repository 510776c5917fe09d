// Values as JSON text. Both forms put a backslash before each slash inside a string, write
// non-ASCII characters as UTF-8 and need texts that are valid UTF-8.

#pragma once

#include <string>
#include <string_view>

#include "core/json/value.h"

namespace tessum::json {

// One line without white space.
[[nodiscard]] std::string compact(const Value& value);
void appendCompact(std::string& out, const Value& value);

// One member or element a line, indented by two blanks a level; members in the order of their
// keys' code points; no line feed at the end.
[[nodiscard]] std::string pretty(const Value& value);

// Appends `text` as a JSON string.
void appendString(std::string& out, std::string_view text);

}  // namespace tessum::json
