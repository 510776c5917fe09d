// A second JSON reader that shares nothing with the core's, to check what the core writes.

#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessum::plain_json {

enum class Kind { null, boolean, number, text, array, object };

struct Node {
  Kind kind = Kind::null;
  std::string scalar;  // "true" or "false", a number as written, a string decoded
  std::vector<Node> elements;
  std::map<std::string, Node> members;  // the last one of a repeated key

  friend bool operator==(const Node&, const Node&) = default;
};

// The value of `text`, with or without a byte-order mark; absent unless it is strict JSON in UTF-8
// with at most 512 nested levels.
[[nodiscard]] std::optional<Node> read(std::string_view text);

}  // namespace tessum::plain_json
