// The timeline as a page for the browser.

#pragma once

#include <string>

#include "core/platform/locations.h"
#include "desktop/timeline/timeline_history.h"

namespace tessum {

// The history as one self-contained HTML page. Without scripts, and on paper, it is a picture with
// tables; its script, the only one that its policy lets run, lets the reader explore the history.
// The page follows the reader's light or dark preference and loads nothing.
[[nodiscard]] std::string timelinePage(const TimelineHistory& history);

// The file of the page that is opened in the browser.
[[nodiscard]] std::string timelinePath(const Locations& locations);

// Removes that file if it is there: what it shows may have been forgotten. Throws
// std::filesystem::filesystem_error.
void removeTimeline(const Locations& locations);

}  // namespace tessum
