// Counting in dates of the calendar, without any zone.

#pragma once

#include <string>

#include "core/platform/calendar.h"

namespace tessum {

// The date `days` after `date`, or before it when they are negative.
[[nodiscard]] CalendarDate daysAfter(const CalendarDate& date, int days);

// How many days after `first` `last` comes, negative when it comes before.
[[nodiscard]] int daysBetween(const CalendarDate& first, const CalendarDate& last);

// 0 for Monday to 6 for Sunday.
[[nodiscard]] int weekdayFromMonday(const CalendarDate& date);

// Whether there is such a date between the years 1 and 9999.
[[nodiscard]] bool isDate(const CalendarDate& date);

[[nodiscard]] std::string dateText(const CalendarDate& date);      // 2025-03-04
[[nodiscard]] std::string longDateText(const CalendarDate& date);  // Tuesday, 4 March 2025

// The English name of a day of the week, 0 for Monday.
[[nodiscard]] const char* weekdayName(int fromMonday);

}  // namespace tessum
