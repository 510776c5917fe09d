// Text reports for people, in local time.

#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/base/date.h"
#include "core/store/history.h"
#include "core/store/records.h"
#include "desktop/command.h"
#include "desktop/reports/text_layout.h"

namespace tessum {

// The history of one day; each list is ordered oldest first.
struct DayHistory {
  DayRange day;
  std::vector<Activity> sessions;  // that began on the day
  std::vector<Annotation> notes;   // that overlap it
  Date now;                        // open sessions and notes count up to here
};

// Reads the local day that contains `day`.
[[nodiscard]] DayHistory readDay(History& history, const Host& host, Date day);

// Seconds from `start` to `end`, or to `now` when absent; never negative, whatever other programs
// have written.
[[nodiscard]] double secondsUntil(Date now, Date start, const std::optional<Date>& end);

// As above, for `session`.
[[nodiscard]] double secondsUntil(Date now, const Activity& session);

// The total of each application, largest first; ties are ordered by name.
[[nodiscard]] std::vector<AppUsageSummary> usageOf(std::span<const Activity> sessions, Date now);

// Each report is a heading and a line for each entry, or a sentence when there are none. Each ends
// in a line feed.
[[nodiscard]] std::string dayReport(const DayHistory& history, const Paper& paper);
[[nodiscard]] std::string usageReport(const DayHistory& history, const Paper& paper);
[[nodiscard]] std::string notesReport(const DayHistory& history, const Paper& paper);

// Newest first, in the order of `sessions`.
[[nodiscard]] std::string searchReport(std::span<const Activity> sessions, Date now,
                                       const Paper& paper);

}  // namespace tessum
