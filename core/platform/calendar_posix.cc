// Local days over the C library.
//
// Midnight is not always the first instant of a date. A zone may skip it (the clock goes from
// 23:59:59 to 01:00), have it twice (the clock goes back soon after it), or skip a whole date
// (when it moves across the date line). So midnight by mktime is only a candidate: it holds when
// the clock was not shifted in the hours before it. Otherwise the first instant is searched for,
// minute by minute from a moment that is certainly too early: slow, but at most two days a year
// need it.

#include "core/platform/calendar.h"

#include <cmath>
#include <cstdint>
#include <ctime>

#include "core/base/check.h"

namespace tessum {
namespace {

constexpr std::time_t kMinute = 60;
constexpr std::time_t kHour = 60 * kMinute;

// No zone ever shifted its clock by more, but for the moves across the date line.
constexpr std::time_t kLongestShift = 3 * kHour;

// A date that the zone skipped puts its candidate up to a day, and a shift, away.
constexpr std::time_t kLongestSearch = 50 * kHour;

std::tm localTime(std::time_t at) {
  std::tm local{};
  TESSUM_CHECK(localtime_r(&at, &local) != nullptr, "a date lies outside the calendar");
  return local;
}

// The date of `local` as one number that orders like the calendar.
std::int64_t ordinalOf(const std::tm& local) {
  return (std::int64_t{local.tm_year} * 12 + local.tm_mon) * 31 + local.tm_mday;
}

std::int64_t localOrdinal(std::time_t at) {
  return ordinalOf(localTime(at));
}

// The first instant whose local date is the given one or later. The day may lie beyond the end
// of its month: 32 January is 1 February.
std::time_t firstInstant(int year, int month, int day) {
  std::tm wantedDate{};
  wantedDate.tm_year = year - 1900;
  wantedDate.tm_mon = month - 1;
  wantedDate.tm_mday = day;
  wantedDate.tm_isdst = -1;
  std::tm candidateDate = wantedDate;
  const std::time_t candidate = std::mktime(&candidateDate);
  timegm(&wantedDate);  // knows no zone: it only brings the date into its normal form
  const std::int64_t wanted = ordinalOf(wantedDate);

  const std::tm local = localTime(candidate);
  if (ordinalOf(local) == wanted && localOrdinal(candidate - 1) < wanted &&
      local.tm_gmtoff == localTime(candidate - kLongestShift).tm_gmtoff) {
    return candidate;
  }

  std::time_t before = candidate - kLongestSearch;
  std::time_t inside = before;
  while (localOrdinal(inside) < wanted) {
    before = inside;
    inside += kMinute;
    TESSUM_CHECK(inside < candidate + kLongestSearch, "a local day has no beginning");
  }
  while (inside - before > 1) {
    const std::time_t middle = before + (inside - before) / 2;
    (localOrdinal(middle) < wanted ? before : inside) = middle;
  }
  return inside;
}

std::time_t wholeSeconds(Date date) {
  // 2^53 seconds are 285 million years; the C library's year is a 32-bit number.
  TESSUM_CHECK(std::abs(date.secondsSince1970) < 9007199254740992.0,
               "a date lies outside the calendar");
  return static_cast<std::time_t>(std::floor(date.secondsSince1970));
}

Date dateOf(std::time_t seconds) {
  return {static_cast<double>(seconds)};
}

bool isLeapYear(int year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

bool exists(const CalendarDate& date) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (date.month < 1 || date.month > 12 || date.day < 1) return false;
  const int leapDay = date.month == 2 && isLeapYear(date.year) ? 1 : 0;
  return date.day <= kDays[date.month - 1] + leapDay;
}

}  // namespace

DayRange SystemCalendar::dayOf(Date date) const {
  tzset();  // localtime_r need not look the zone up again, and a zone may have changed
  const std::time_t at = wholeSeconds(date);
  const std::tm local = localTime(at);
  const int year = local.tm_year + 1900;
  const int month = local.tm_mon + 1;
  return {dateOf(firstInstant(year, month, local.tm_mday)),
          dateOf(firstInstant(year, month, local.tm_mday + 1))};
}

std::optional<Date> SystemCalendar::startOf(const CalendarDate& date) const {
  if (!exists(date)) return std::nullopt;
  tzset();
  return dateOf(firstInstant(date.year, date.month, date.day));
}

Date SystemCalendar::dayBefore(Date date) const {
  return movedBy(dayOf(date).start, -1);
}

}  // namespace tessum
