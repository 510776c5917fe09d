// A second reader of JSON, which shares nothing with the core's: it judges what the core wrote.

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
  std::string scalar;  // "true" or "false", a number as it is written, a text as it is meant
  std::vector<Node> elements;
  std::map<std::string, Node> members;  // of a key that comes twice, the last

  friend bool operator==(const Node&, const Node&) = default;
};

// The value of `text`, with a byte-order mark or without; absent when it is not strict JSON in
// UTF-8 of at most 512 nested levels.
[[nodiscard]] std::optional<Node> read(std::string_view text);

}  // namespace tessum::plain_json
