// The options that narrow a report.

#pragma once

#include <string>

#include "desktop/settings/rules.h"
#include "desktop/usage/session_filter.h"

namespace CLI {
class App;
}

namespace tessum {

// An empty text narrows nothing.
struct FilterOptions {
  std::string appName;
  std::string titlePart;
  std::string category;
};

// Adds --app, --title and --category to `command`, behind its --plain if it has one; `options` must
// live as long.
void addFilterOptions(CLI::App& command, FilterOptions& options);

// What narrows a report, to follow the word "sessions": `of Editor with "main" in the title`. Empty
// where nothing does.
[[nodiscard]] std::string narrowingText(const FilterOptions& options);

// Throws a CLI::ValidationError where `rules` have no such category.
[[nodiscard]] SessionFilter filterOf(const FilterOptions& options, const Rules& rules);

// The same as a test; empty where nothing narrows. `rules` must outlive it.
[[nodiscard]] SessionTest sessionTestOf(const FilterOptions& options, const Rules& rules);

}  // namespace tessum
