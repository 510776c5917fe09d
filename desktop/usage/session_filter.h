// Which sessions a report is about.

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/store/history.h"
#include "desktop/usage/category_finder.h"

namespace tessum {

// What a report calls the time that belongs to no category.
inline constexpr std::string_view kUncategorised = "Uncategorised";

// Sessions for which each present part holds.
struct SessionFilter {
  std::optional<std::string> appName;   // of exactly this application
  TextTest isMeantTitle;                // with such a title
  std::optional<std::string> category;  // of this name, or kUncategorised

  [[nodiscard]] bool isEmpty() const { return !appName && !isMeantTitle && !category; }
};

[[nodiscard]] bool passes(const SessionFilter& filter, const Activity& session,
                          CategoryFinder& categories);

}  // namespace tessum
