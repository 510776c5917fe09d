// The days of the reports for people.

#pragma once

#include "core/platform/calendar.h"
#include "desktop/periods/period.h"

namespace tessum {

// Days that begin at one time of day: midnight, or later, so that a night belongs to one day. One
// thread at a time.
class ReportDays {
 public:
  // `startMinute` is counted from midnight and less than a day. `calendar` must outlive the object.
  ReportDays(const Calendar& calendar, int startMinute)
      : calendar_(calendar), startMinute_(startMinute) {}

  // The first instant of the day `date`. Where the zone leaves that time of day out, it is the
  // moment of the leap; a date that the zone skips is as long as nothing. `date` exists.
  [[nodiscard]] Date startOf(const CalendarDate& date) const;

  // From the first instant of `period` to that of the day after it.
  [[nodiscard]] DayRange rangeOf(const Period& period) const;

  // The day that holds `date`, of the years 1 to 9999; the nearest one for other dates.
  [[nodiscard]] CalendarDate dayOf(Date date) const;

  // The hour of the clock in which days begin.
  [[nodiscard]] int firstHour() const { return startMinute_ / 60; }

 private:
  const Calendar& calendar_;
  int startMinute_;
};

}  // namespace tessum
