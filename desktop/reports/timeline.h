// A picture of one day.

#pragma once

#include <string>

#include "core/platform/locations.h"
#include "desktop/reports/day_report.h"

namespace tessum {

// The day as one self-contained HTML page: the notes at the top, then all sessions on one line,
// then a line for each application with its total. Pointing at a span shows its title, times and
// length. The page follows the reader's light or dark preference, loads nothing and runs no script.
[[nodiscard]] std::string timelinePage(const DayHistory& history);

// The file of the page that is opened in the browser.
[[nodiscard]] std::string timelinePath(const Locations& locations);

// Removes that file if it is there: what it shows may have been forgotten. Throws
// std::filesystem::filesystem_error.
void removeTimeline(const Locations& locations);

}  // namespace tessum
