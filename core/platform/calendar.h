// Local days: which one a moment belongs to, and where one begins and ends.

#pragma once

#include <optional>

#include "core/base/date.h"

namespace tessum {

// A date of the Gregorian calendar, as a person writes it.
struct CalendarDate {
  int year = 1970;
  int month = 1;  // 1 to 12
  int day = 1;    // 1 to 31

  friend bool operator==(const CalendarDate&, const CalendarDate&) = default;
};

// A stretch of time from `start` up to, but not including, `end`.
struct DayRange {
  Date start;
  Date end;

  friend bool operator==(const DayRange&, const DayRange&) = default;
};

// The user's calendar in the user's time zone. Both are looked up at each call, so a change of
// zone takes effect at once. One thread at a time.
class Calendar {
 public:
  virtual ~Calendar() = default;

  // The local day that holds `date`: from its first instant to the first instant of the next
  // date. It is 24 hours long but where the zone's offset changes. A date that the calendar
  // cannot place stops the process.
  [[nodiscard]] virtual DayRange dayOf(Date date) const = 0;

  // The first instant of `date`; of the next date that exists where the zone skipped this one.
  // Absent when there is no such date, as for 30 February.
  [[nodiscard]] virtual std::optional<Date> startOf(const CalendarDate& date) const = 0;

  // A moment of the local day before the one that holds `date`.
  [[nodiscard]] virtual Date dayBefore(Date date) const = 0;
};

// The calendar and zone of this system: the variable TZ, else the system's zone.
class SystemCalendar final : public Calendar {
 public:
  [[nodiscard]] DayRange dayOf(Date date) const override;
  [[nodiscard]] std::optional<Date> startOf(const CalendarDate& date) const override;
  [[nodiscard]] Date dayBefore(Date date) const override;
};

}  // namespace tessum
