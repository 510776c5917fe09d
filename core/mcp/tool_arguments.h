// What a call of a tool asks for.

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/mcp/any_codable.h"

namespace tessum {

// The arguments of all tools. One that is missing or of another kind is absent; of an argument
// that is given twice the last counts.
struct ToolArguments {
  std::optional<std::string> date = {};
  std::optional<std::string> duration = {};
  std::optional<std::int64_t> limit = {};  // any integral number that fits 64 bits: 10, 10.0, 1e1
  std::optional<std::string> query = {};
  std::optional<std::string> text = {};
};

// The params of "tools/call".
struct ToolCall {
  std::optional<std::string> name;  // absent when it is missing or not a text
  ToolArguments arguments;

  // Reads `params`, and the arguments in them, in one pass each. Whatever is not an object has no
  // members.
  [[nodiscard]] static ToolCall decode(const AnyCodable& params);
};

}  // namespace tessum
