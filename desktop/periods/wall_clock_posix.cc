#include "desktop/periods/wall_clock.h"

#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "desktop/periods/calendar_dates.h"

namespace tessum {
namespace {

// The years 1 to 9999 in UTC, less a day at each end so that every zone stays within them.
constexpr double kEarliest = -62135510400.0;
constexpr double kLatest = 253402214400.0;

constexpr double kSecondsOfDay = 86400;

tm localTime(Date date) {
  const double seconds = std::isnan(date.secondsSince1970) ? 0 : date.secondsSince1970;
  const auto at = static_cast<time_t>(std::floor(std::clamp(seconds, kEarliest, kLatest)));
  tzset();  // localtime_r need not look up the zone itself
  tm local{};
  localtime_r(&at, &local);
  return local;
}

// Seconds from the local time at `date` to the next time of day `seconds`, ignoring clock changes.
double secondsUntil(double seconds, Date date) {
  const tm local = localTime(date);
  const double shown = local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
  return seconds >= shown ? seconds - shown : seconds - shown + kSecondsOfDay;
}

// The first whole second after `start`, up to `end`, with the same zone offset as `end`.
Date changeOfZone(Date start, Date end) {
  const double after = secondsAheadOfUtc(end);
  while (secondsBetween(start, end) > 1) {
    const Date middle{std::floor((start.secondsSince1970 + end.secondsSince1970) / 2)};
    (secondsAheadOfUtc(middle) == after ? end : start) = middle;
  }
  return end;
}

std::string twoDigits(int value) {
  return (value < 10 ? "0" : "") + std::to_string(value);
}

}  // namespace

double secondsAheadOfUtc(Date date) {
  return static_cast<double>(localTime(date).tm_gmtoff);
}

WallTime wallTime(Date date) {
  const tm local = localTime(date);
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
  return dateText(wallTime(date).date);
}

std::string offsetDateTime(Date date) {
  const WallTime time = wallTime(date);
  // The format has no seconds in the offset, which zones had before they were set by the hour.
  const int minutes = static_cast<int>(secondsAheadOfUtc(date)) / 60;
  return dateText(time.date) + "T" + twoDigits(time.hour) + ":" + twoDigits(time.minute) + ":" +
         twoDigits(time.second) + (minutes < 0 ? "-" : "+") + twoDigits(std::abs(minutes) / 60) +
         ":" + twoDigits(std::abs(minutes) % 60);
}

Date nextTimeOfDay(int minute, Date now) {
  const double wanted = minute * 60.0;
  const Date start{std::floor(now.secondsSince1970)};
  double wait = secondsUntil(wanted, start);
  if (wait == 0) wait = kSecondsOfDay;
  const Date next = movedBy(start, wait);
  const double leap = secondsAheadOfUtc(next) - secondsAheadOfUtc(start);
  if (leap == 0) return next;
  const Date change = changeOfZone(start, next);
  if (leap > 0 && secondsBetween(change, next) <= leap) return change;
  return movedBy(change, secondsUntil(wanted, change));
}

Date endOfHour(Date date) {
  const Date start{std::floor(date.secondsSince1970)};
  const tm local = localTime(start);
  const Date end = movedBy(start, kSecondsPerHour - (local.tm_min * 60 + local.tm_sec));
  return secondsAheadOfUtc(end) == secondsAheadOfUtc(start) ? end : changeOfZone(start, end);
}

}  // namespace tessum
