#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "core/mcp/date_argument.h"
#include "desktop/reports/wall_clock.h"

namespace tessum {
namespace {

// The years 1 and 9999 in UTC, with a day's distance to stay within them in every zone.
constexpr double kEarliest = -62135510400.0;
constexpr double kLatest = 253402214400.0;

constexpr const char* kWeekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                     "Thursday", "Friday", "Saturday"};
constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};

std::string twoDigits(int value) {
  return (value < 10 ? "0" : "") + std::to_string(value);
}

}  // namespace

WallTime wallTime(Date date) {
  const double seconds = std::isnan(date.secondsSince1970) ? 0 : date.secondsSince1970;
  const auto at = static_cast<time_t>(std::floor(std::clamp(seconds, kEarliest, kLatest)));
  tzset();  // localtime_r need not look the zone up again
  tm local{};
  localtime_r(&at, &local);
  return {.date = {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday},
          .weekday = local.tm_wday,
          .hour = local.tm_hour,
          .minute = local.tm_min,
          .second = local.tm_sec};
}

std::string clockText(Date date) {
  const WallTime time = wallTime(date);
  return twoDigits(time.hour) + ":" + twoDigits(time.minute);
}

std::string dateText(Date date) {
  const CalendarDate day = wallTime(date).date;
  char year[16];
  std::snprintf(year, sizeof year, "%04d", day.year);
  return std::string(year) + "-" + twoDigits(day.month) + "-" + twoDigits(day.day);
}

std::string longDateText(Date date) {
  const WallTime time = wallTime(date);
  return std::string(kWeekdays[time.weekday]) + ", " + std::to_string(time.date.day) + " " +
         kMonths[time.date.month - 1] + " " + std::to_string(time.date.year);
}

std::optional<Date> namedDay(const std::string& name, const Clock& clock,
                             const Calendar& calendar) {
  if (name == "today") return clock.now();
  if (name == "yesterday") return calendar.dayBefore(clock.now());
  return parseDate(name, calendar);
}

}  // namespace tessum
