#include "desktop/periods/calendar_dates.h"

#include <chrono>
#include <cstdio>

namespace tessum {
namespace {

constexpr const char* kWeekdays[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                     "Friday", "Saturday", "Sunday"};
constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};

std::chrono::year_month_day chronoDate(const CalendarDate& date) {
  return std::chrono::year{date.year} / date.month / date.day;
}

std::chrono::sys_days sysDays(const CalendarDate& date) {
  return chronoDate(date);
}

}  // namespace

CalendarDate daysAfter(const CalendarDate& date, int days) {
  const std::chrono::year_month_day moved{sysDays(date) + std::chrono::days{days}};
  return {static_cast<int>(moved.year()), static_cast<int>(static_cast<unsigned>(moved.month())),
          static_cast<int>(static_cast<unsigned>(moved.day()))};
}

int daysBetween(const CalendarDate& first, const CalendarDate& last) {
  return static_cast<int>((sysDays(last) - sysDays(first)).count());
}

int weekdayFromMonday(const CalendarDate& date) {
  return static_cast<int>(std::chrono::weekday{sysDays(date)}.iso_encoding()) - 1;
}

bool isDate(const CalendarDate& date) {
  return date.year >= 1 && date.year <= 9999 && date.month >= 1 && date.day >= 1 &&
         chronoDate(date).ok();
}

std::string dateText(const CalendarDate& date) {
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", date.year, date.month, date.day);
  return text;
}

std::string longDateText(const CalendarDate& date) {
  return std::string(weekdayName(weekdayFromMonday(date))) + ", " + std::to_string(date.day) + " " +
         kMonths[date.month - 1] + " " + std::to_string(date.year);
}

const char* weekdayName(int fromMonday) {
  return kWeekdays[fromMonday];
}

}  // namespace tessum
