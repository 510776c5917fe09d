#include "desktop/settings/suggestion.h"

#include <algorithm>
#include <cstddef>

namespace tessum {
namespace {

constexpr std::size_t kLongestWord = 64;  // longer ones resemble none of ours
constexpr std::size_t kMostEdits = 2;

// How many letters must be added, removed or changed to turn `a` into `b`.
std::size_t edits(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() +
                               1);  // of the letters of `a` so far, for each start of `b`
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string suggestion(std::string_view word, const std::vector<std::string_view>& words) {
  if (word.size() > kLongestWord) return "";
  std::string_view nearest;
  std::size_t least = kMostEdits + 1;
  for (const std::string_view candidate : words) {
    const std::size_t count = edits(word, candidate);
    if (count >= least || count >= candidate.size()) continue;
    least = count;
    nearest = candidate;
  }
  return nearest.empty() ? "" : "; did you mean \"" + std::string(nearest) + "\"?";
}

}  // namespace tessum
