// The sessions and notes of a day, and what sessions amount to.

#pragma once

#include <optional>
#include <span>
#include <vector>

#include "core/base/date.h"
#include "core/store/history.h"
#include "core/store/records.h"
#include "desktop/periods/period.h"
#include "desktop/periods/report_days.h"

namespace tessum {

// The history of one day; each list is ordered oldest first.
struct DayHistory {
  CalendarDate date;
  DayRange day;
  std::vector<Activity> sessions;   // that overlap the day, cut at its edges
  std::vector<DayRange> away = {};  // the times between sessions, of a minute or longer
  std::vector<Annotation> notes;    // that overlap it, whole
  Date now;                         // open sessions and notes count up to here
  bool leavesOutSome = false;       // whether a filter left out sessions
};

[[nodiscard]] DayHistory readDay(History& history, const ReportDays& days, const CalendarDate& date,
                                 Date now);

// The days of `period` on which something can have been recorded: not before the first record, and
// not after today. One day where there are none.
[[nodiscard]] Period recordedDays(History& history, const Period& period, const ReportDays& days,
                                  Date now);

// The part of `session` that lies in `range`, which it overlaps; one that is open stays so unless
// `range` ends before `now`.
[[nodiscard]] Activity cutTo(const DayRange& range, const Activity& session, Date now);

// Seconds from `start` to `end`, or to `now` when absent; never negative, whatever other programs
// have written.
[[nodiscard]] double secondsUntil(Date now, Date start, const std::optional<Date>& end);

// As above, for `session`.
[[nodiscard]] double secondsUntil(Date now, const Activity& session);

// The total of each application, largest first; ties are ordered by name.
[[nodiscard]] std::vector<AppUsageSummary> usageOf(std::span<const Activity> sessions, Date now);

}  // namespace tessum
