// The tables of the page without its script and on paper.

#pragma once

#include <string>

#include "desktop/timeline/timeline_history.h"

namespace tessum {

// The applications with their totals; for several days, whose picture has none.
[[nodiscard]] std::string appTable(const TimelineHistory& history);

// The notes with their times; nothing where there are none.
[[nodiscard]] std::string noteTable(const TimelineHistory& history);

// The titles with the longest time.
[[nodiscard]] std::string titleTable(const TimelineHistory& history);

}  // namespace tessum
