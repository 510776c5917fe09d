// The applications of a timeline, the largest first.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "desktop/timeline/timeline_history.h"

namespace tessum {

struct AppRow {
  std::string name;  // "3 others" for the last row where it is shared
  std::vector<std::size_t> apps;
  double seconds = 0;
};

// At most `most` rows; the last one is shared by all that have none of their own.
[[nodiscard]] std::vector<AppRow> appRows(const TimelineHistory& history, std::size_t most);

[[nodiscard]] double secondsOf(const TimelineSession& session);

// Of all sessions.
[[nodiscard]] double totalSeconds(const TimelineHistory& history);

}  // namespace tessum
