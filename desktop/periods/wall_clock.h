// Converts points in time to local time.

#pragma once

#include <string>

#include "core/base/date.h"
#include "core/platform/calendar.h"

namespace tessum {

inline constexpr double kSecondsPerHour = 3600;

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

// How far the wall is ahead of UTC at `date`.
[[nodiscard]] double secondsAheadOfUtc(Date date);

[[nodiscard]] std::string clockText(Date date);  // 09:15
[[nodiscard]] std::string dateText(Date date);   // 2025-03-04

// By RFC 3339, without a fraction of a second: 2025-03-04T09:15:00+01:00
[[nodiscard]] std::string offsetDateTime(Date date);

// The first moment after `now` whose local time is `minute`, counted from midnight. If the zone
// skips that time, the moment of the clock change.
[[nodiscard]] Date nextTimeOfDay(int minute, Date now);

// The first moment after `date` at which the wall shows a full hour, or is set.
[[nodiscard]] Date endOfHour(Date date);

}  // namespace tessum
