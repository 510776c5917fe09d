// A picture of one day.

#pragma once

#include <string>

#include "core/platform/locations.h"
#include "desktop/reports/day_report.h"

namespace tessum {

// The day as one HTML page that needs nothing else: above, the notes; below them all sessions on
// one line, then a line for each application with its total beside it. Every span tells its title,
// its times and its length when it is pointed at. The page follows the reader's choice of light or
// dark, loads nothing and runs no script.
[[nodiscard]] std::string timelinePage(const DayHistory& history);

// The file of the page that is opened in the browser.
[[nodiscard]] std::string timelinePath(const Locations& locations);

// Removes that file if it is there: what it shows may have been forgotten. Throws
// std::filesystem::filesystem_error.
void removeTimeline(const Locations& locations);

}  // namespace tessum
