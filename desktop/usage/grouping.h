// What a report adds up the time by.

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessum {

enum class Grouping { app, title, category, note, day, weekday, hour };

// The enumerator's name, under which reports name the groups.
[[nodiscard]] std::string_view groupingName(Grouping grouping);

// Parses names with commas between them: one grouping, or two different ones, of which the second
// divides the groups of the first. Empty for any other text.
[[nodiscard]] std::vector<Grouping> parseGroupings(std::string_view text);

// All names, as messages list them.
[[nodiscard]] std::string groupingNames();

// Whether the groups come in the order of time rather than of their size.
[[nodiscard]] bool isChronological(Grouping grouping);

}  // namespace tessum
