// Truncates long texts from other programs.

#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace tessum {

inline constexpr std::size_t kLongestTitle = 1 << 20;  // bytes
inline constexpr std::size_t kLongestName = 1
                                            << 14;  // bytes, of an application's name or identifier

// `text`, which is valid UTF-8, cut to at most `longest` bytes at a character boundary. Any thread.
[[nodiscard]] std::string cutToLength(std::string text, std::size_t longest);

// `text`, which is valid UTF-8, as a window title: absent when empty, cut to kLongestTitle. Any
// thread.
[[nodiscard]] std::optional<std::string> titleFrom(std::string text);

}  // namespace tessum
