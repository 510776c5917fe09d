// How a JSON text is written, so that what is added to it looks the same.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/json/value.h"
#include "desktop/clients/edit/json_layout.h"

namespace tessum {

// `text` as a JSON string, without the backslashes before slashes, which nobody writes by hand. As
// such it is a TOML string, too.
[[nodiscard]] std::string quoted(std::string_view text);

// "\r\n" when the first line of `text` ends so, else "\n".
[[nodiscard]] std::string lineBreakOf(std::string_view text);

// The blanks with which the line of `at` begins.
[[nodiscard]] std::string indentationAt(std::string_view text, std::size_t at);

// How the members of an object are written.
struct JsonStyle {
  bool hasLines = true;     // each member on its own line, else all on one
  std::string indentation;  // of the members' lines
  std::string unit = "  ";  // of one more level
  std::string lineBreak = "\n";

  // `value` in this style, without the indentation of its first line.
  [[nodiscard]] std::string written(const json::Value& value) const;

  // A member in this style, likewise.
  [[nodiscard]] std::string member(std::string_view key, const json::Value& value) const;
};

// The style of `object` in `text`, whose root is `root`.
[[nodiscard]] JsonStyle styleOf(std::string_view text, const JsonObject& root,
                                const JsonObject& object);

}  // namespace tessum
