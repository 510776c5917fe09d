#include "desktop/periods/report_days.h"

#include "core/base/check.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/periods/wall_clock.h"

namespace tessum {

Date ReportDays::startOf(const CalendarDate& date) const {
  const auto start = calendar_.startOf(date);
  TESSUM_CHECK(start.has_value(), "a day of the reports does not exist");
  const WallTime shown = wallTime(*start);
  // A day need not begin at midnight, and not with the zone's first instant of it.
  if (shown.hour * 60 + shown.minute >= startMinute_) return *start;
  return nextTimeOfDay(startMinute_, *start);
}

DayRange ReportDays::rangeOf(const Period& period) const {
  return {startOf(period.first), startOf(daysAfter(period.last, 1))};
}

CalendarDate ReportDays::dayOf(Date date) const {
  CalendarDate day = wallTime(date).date;
  // The wall may show the date before or behind: in the small hours, and where it is set back over
  // the beginning of a day. A skipped date makes it two.
  constexpr int kFarthest = 2;
  for (int i = 0; i < kFarthest && secondsBetween(startOf(day), date) < 0; ++i) {
    if (!isDate(daysAfter(day, -1))) return day;
    day = daysAfter(day, -1);
  }
  for (int i = 0; i < kFarthest && secondsBetween(startOf(daysAfter(day, 1)), date) >= 0; ++i) {
    if (!isDate(daysAfter(day, 1))) return day;
    day = daysAfter(day, 1);
  }
  return day;
}

}  // namespace tessum
