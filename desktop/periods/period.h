// Periods of whole days as a person writes them:
//
//   today, yesterday, monday to sunday    one day; a weekday is the latest one, today included
//   3d                                    the last three days, today included
//   week, month, year                     from the first day of this one to today
//   last-week, last-month                 the whole one before
//   2025, 2025-03, 2025-W10, 2025-03-04   a year, a month, a week from Monday to Sunday, a day
//   PERIOD..PERIOD, PERIOD..              from the first day of one to the last of the other, or to
//                                         today
//
// Capital letters are the same as small ones.

#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/platform/calendar.h"

namespace tessum {

// The days from `first` to `last`, both included. `last` is never before `first`, and both lie in
// the years 1 to 9999.
struct Period {
  CalendarDate first;
  CalendarDate last;

  friend bool operator==(const Period&, const Period&) = default;
};

// How many days `period` has.
[[nodiscard]] int dayCount(const Period& period);

// Its first and its last day in words; just the day where it is one.
[[nodiscard]] std::string longPeriodText(const Period& period);

// The text is no period; what() shows the forms that are.
class PeriodError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

// The periods that are plain words, such as today and last-week.
[[nodiscard]] const std::vector<std::string>& periodWords();

// The period that `text` means on the day `today`. Throws PeriodError.
[[nodiscard]] Period parsePeriod(std::string_view text, const CalendarDate& today);

}  // namespace tessum
