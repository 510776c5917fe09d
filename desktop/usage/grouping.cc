#include "desktop/usage/grouping.h"

#include <algorithm>
#include <array>

namespace tessum {
namespace {

using enum Grouping;

// In the order of the enumerators.
constexpr std::array<std::string_view, 7> kNames{"app", "title",   "category", "note",
                                                 "day", "weekday", "hour"};

std::optional<Grouping> parseGrouping(std::string_view text) {
  const auto found = std::find(kNames.begin(), kNames.end(), text);
  if (found == kNames.end()) return std::nullopt;
  return static_cast<Grouping>(found - kNames.begin());
}

}  // namespace

std::string_view groupingName(Grouping grouping) {
  return kNames[static_cast<std::size_t>(grouping)];
}

std::vector<Grouping> parseGroupings(std::string_view text) {
  const auto comma = text.find(',');
  const auto first = parseGrouping(text.substr(0, comma));
  if (!first) return {};
  if (comma == std::string_view::npos) return {*first};
  const auto second = parseGrouping(text.substr(comma + 1));
  if (!second || *second == *first) return {};
  return {*first, *second};
}

std::string groupingNames() {
  std::string names;
  for (const std::string_view name : kNames) {
    names += (names.empty() ? "" : ", ") + std::string(name);
  }
  return names;
}

bool isChronological(Grouping grouping) {
  return grouping == day || grouping == weekday || grouping == hour;
}

}  // namespace tessum
