// Comma-separated lines. Each ends with a carriage return and a line feed, as the format's readers
// expect.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessum {

// One line of `fields`, which are put in quotes where they need them. A text that a spreadsheet
// would take for a formula gets an apostrophe before it unless `isRaw`, since a title could
// have it send the other fields elsewhere.
[[nodiscard]] std::string csvLine(const std::vector<std::string>& fields, bool isRaw = false);

// Seconds as a field. A millisecond is finer than anything we measure.
[[nodiscard]] std::string secondsText(double seconds);

}  // namespace tessum
