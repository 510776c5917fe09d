// The reports for people, in local time.

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

// What one day holds, each list with the oldest first.
struct DayHistory {
  DayRange day;
  std::vector<Activity> sessions;  // begun on the day
  std::vector<Annotation> notes;   // that overlap it
  Date now;                        // up to which open sessions and notes are counted
};

// Reads the local day that holds `day`.
[[nodiscard]] DayHistory readDay(History& history, const Host& host, Date day);

// Seconds from `start` to `end`, or to `now` where there is none; never negative, whatever other
// programs have written.
[[nodiscard]] double secondsUntil(Date now, Date start, const std::optional<Date>& end);

// Those of `session`.
[[nodiscard]] double secondsUntil(Date now, const Activity& session);

// The total of each application, the largest first; equal ones in the order of their names.
[[nodiscard]] std::vector<AppUsageSummary> usageOf(std::span<const Activity> sessions, Date now);

// Each report is a heading and a line for each record, or a sentence where there are none, with a
// line feed at the end.
[[nodiscard]] std::string dayReport(const DayHistory& history, const Paper& paper);
[[nodiscard]] std::string usageReport(const DayHistory& history, const Paper& paper);
[[nodiscard]] std::string notesReport(const DayHistory& history, const Paper& paper);

// The newest first, as it is found.
[[nodiscard]] std::string searchReport(std::span<const Activity> sessions, Date now,
                                       const Paper& paper);

}  // namespace tessum
