#include "core/update/version.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <system_error>
#include <vector>

namespace tessum {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

std::optional<std::int64_t> number(std::string_view piece) {
  if (piece.starts_with('+')) {
    piece.remove_prefix(1);
    if (piece.empty() || !isDigit(piece.front())) return std::nullopt;
  }
  std::int64_t value = 0;
  const char* const end = piece.data() + piece.size();
  const auto [stop, error] = std::from_chars(piece.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

std::vector<std::int64_t> numbers(std::string_view version) {
  std::vector<std::int64_t> list;
  while (!version.empty()) {
    const std::string_view piece = version.substr(0, version.find('.'));
    if (const auto value = number(piece)) list.push_back(*value);
    version.remove_prefix(std::min(piece.size() + 1, version.size()));
  }
  return list;
}

}  // namespace

bool isNewer(std::string_view a, std::string_view b) {
  std::vector<std::int64_t> left = numbers(a);
  std::vector<std::int64_t> right = numbers(b);
  const std::size_t length = std::max(left.size(), right.size());
  left.resize(length);
  right.resize(length);
  return left > right;
}

std::string_view versionOfTag(std::string_view tag) {
  if (tag.starts_with('v')) tag.remove_prefix(1);
  return tag;
}

}  // namespace tessum
