// Converts points in time to local time.

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

// The local time at `date`. Looks up the zone at each call; a date outside the system's calendar
// becomes the nearest one inside. Any thread.
[[nodiscard]] WallTime wallTime(Date date);

[[nodiscard]] std::string clockText(Date date);     // 09:15
[[nodiscard]] std::string dateText(Date date);      // 2025-03-04
[[nodiscard]] std::string longDateText(Date date);  // Tuesday, 4 March 2025

// The first moment after `now` whose local time is `minute`, counted from midnight. If the zone
// skips that time, the moment of the clock change.
[[nodiscard]] Date nextTimeOfDay(int minute, Date now);

// A moment of the local day named by a person: 2025-03-04, today or yesterday. Absent for any other
// text and for dates that do not exist.
[[nodiscard]] std::optional<Date> namedDay(const std::string& name, const Clock& clock,
                                           const Calendar& calendar);

}  // namespace tessum
