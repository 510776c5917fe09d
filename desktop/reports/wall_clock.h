// Points in time as the clock on the wall showed them.

#pragma once

#include <optional>
#include <string>

#include "core/base/date.h"
#include "core/platform/calendar.h"
#include "core/platform/clock.h"

namespace tessum {

// A moment in the user's time zone.
struct WallTime {
  CalendarDate date;
  int weekday = 0;  // 0 for Sunday
  int hour = 0;
  int minute = 0;
  int second = 0;
};

// What the wall showed at `date`. The zone is looked up at each call; a moment too far away for
// the system's calendar becomes the nearest that is not. Any thread.
[[nodiscard]] WallTime wallTime(Date date);

[[nodiscard]] std::string clockText(Date date);     // 09:15
[[nodiscard]] std::string dateText(Date date);      // 2025-03-04
[[nodiscard]] std::string longDateText(Date date);  // Tuesday, 4 March 2025

// The first moment after `now` at which the wall shows `minute`, counted from midnight. Where the
// zone leaves out that time of day, it is the moment of the leap.
[[nodiscard]] Date nextTimeOfDay(int minute, Date now);

// A moment of the local day that a person names: 2025-03-04, today or yesterday. Absent for any
// other text and for dates that do not exist.
[[nodiscard]] std::optional<Date> namedDay(const std::string& name, const Clock& clock,
                                           const Calendar& calendar);

}  // namespace tessum
