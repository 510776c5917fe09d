// The history as the page's script reads it.

#pragma once

#include <string>

#include "desktop/timeline/timeline_history.h"

namespace tessum {

// JSON that can stand in a script element: no text in it can end one. Times are milliseconds from
// the beginning of the first day. Of sessions each takes three numbers: the time since the end of
// the one before, its length, and its subject. Long titles are cut where all of them together would
// make the page too large.
[[nodiscard]] std::string pageData(const TimelineHistory& history);

}  // namespace tessum
