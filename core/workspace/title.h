// Texts of any length from other programs, cut where they get too long to keep.

#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace tessum {

inline constexpr std::size_t kLongestTitle = 1 << 20;  // bytes
inline constexpr std::size_t kLongestName = 1
                                            << 14;  // bytes, of an application's name or identifier

// Valid UTF-8 `text` as far as `longest` bytes and whole characters go. Any thread.
[[nodiscard]] std::string cutToLength(std::string text, std::size_t longest);

// Valid UTF-8 `text` as the title of a window: absent when it is empty, cut to kLongestTitle. Any
// thread.
[[nodiscard]] std::optional<std::string> titleFrom(std::string text);

}  // namespace tessum
