// Where the statements of a TOML text are.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// A table's header, or a key with its value.
struct TomlStatement {
  std::vector<std::string> path;  // from the root, without quotes
  bool isHeader = false;          // "[table]" or "[[table]]"
  std::size_t begin = 0;          // of the key or the bracket
  std::size_t end = 0;            // behind the value or the bracket
};

// The statements of `text` in their order. The text must be TOML that a reader has accepted.
[[nodiscard]] std::vector<TomlStatement> tomlStatements(std::string_view text);

// Whether `path` begins with `start`.
[[nodiscard]] bool isBelow(const std::vector<std::string>& path,
                           const std::vector<std::string>& start);

}  // namespace tessum
