// The categories of sessions.

#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>

#include "core/store/records.h"
#include "desktop/settings/rules.h"

namespace tessum {

// A key that all sessions of one application under one title have in common.
[[nodiscard]] std::string windowKey(const Activity& session);

// Applies the rules of the settings to sessions and remembers what it found, since the same titles
// come again and again. Not thread-safe.
class CategoryFinder {
 public:
  // `rules` must outlive the finder.
  explicit CategoryFinder(const Rules& rules) : rules_(rules) {}

  // The first category that the session belongs to; null when there is none.
  [[nodiscard]] const Category* categoryOf(const Activity& session);

 private:
  // A history of years has too many titles to remember them all.
  static constexpr std::size_t kMostRemembered = 50'000;

  const Rules& rules_;
  std::unordered_map<std::string, const Category*> found_;
};

}  // namespace tessum
