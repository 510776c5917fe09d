#include "desktop/periods/period.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "core/base/text.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

// Takes `least` to `most` digits off the front of `text`.
std::optional<int> takeNumber(std::string_view& text, std::size_t least, std::size_t most) {
  int value = 0;
  std::size_t length = 0;
  while (length < std::min(most, text.size()) && text[length] >= '0' && text[length] <= '9') {
    value = value * 10 + (text[length] - '0');
    ++length;
  }
  if (length < least) return std::nullopt;
  text.remove_prefix(length);
  return value;
}

bool take(std::string_view& text, std::string_view start) {
  if (!text.starts_with(start)) return false;
  text.remove_prefix(start.size());
  return true;
}

CalendarDate firstOfMonth(int year, int month) {
  return {year, month, 1};
}

CalendarDate lastOfMonth(int year, int month) {
  return month == 12 ? CalendarDate{year, 12, 31} : daysAfter(firstOfMonth(year, month + 1), -1);
}

// The last days, as in 3d.
std::optional<Period> parseLastDays(std::string_view text, const CalendarDate& today) {
  const auto count = takeNumber(text, 1, 6);
  if (!count || *count == 0 || text != "d") return std::nullopt;
  return Period{daysAfter(today, 1 - *count), today};
}

std::optional<Period> parseDayName(std::string_view text, const CalendarDate& today) {
  constexpr std::array<std::string_view, 7> kNames{"monday", "tuesday",  "wednesday", "thursday",
                                                   "friday", "saturday", "sunday"};
  const auto found = std::find(kNames.begin(), kNames.end(), text);
  if (found == kNames.end()) return std::nullopt;
  const int wanted = static_cast<int>(found - kNames.begin());
  const CalendarDate day = daysAfter(today, -((weekdayFromMonday(today) - wanted + 7) % 7));
  return Period{day, day};
}

std::optional<Period> parseWord(std::string_view text, const CalendarDate& today) {
  const CalendarDate monday = daysAfter(today, -weekdayFromMonday(today));
  const CalendarDate month = firstOfMonth(today.year, today.month);
  if (text == "today") return Period{today, today};
  if (text == "yesterday") return Period{daysAfter(today, -1), daysAfter(today, -1)};
  if (text == "week") return Period{monday, today};
  if (text == "last-week") return Period{daysAfter(monday, -7), daysAfter(monday, -1)};
  if (text == "month") return Period{month, today};
  if (text == "last-month") {
    const CalendarDate last = daysAfter(month, -1);
    return Period{firstOfMonth(last.year, last.month), last};
  }
  if (text == "year") return Period{{today.year, 1, 1}, today};
  return parseDayName(text, today);
}

// The week of that number by ISO 8601: the first one of a year holds its first Thursday.
std::optional<Period> week(int year, int number) {
  const CalendarDate inFirst{year, 1, 4};
  const CalendarDate firstMonday = daysAfter(inFirst, -weekdayFromMonday(inFirst));
  const CalendarDate monday = daysAfter(firstMonday, (number - 1) * 7);
  if (number < 1 || daysAfter(monday, 3).year != year) return std::nullopt;
  return Period{monday, daysAfter(monday, 6)};
}

// A year, or a part of it. One digit will do for weeks, months and days.
std::optional<Period> parseDates(std::string_view text) {
  const auto year = takeNumber(text, 4, 4);
  if (!year || *year < 1) return std::nullopt;
  if (text.empty()) return Period{{*year, 1, 1}, {*year, 12, 31}};
  if (take(text, "-w")) {
    const auto number = takeNumber(text, 1, 2);
    return number && text.empty() ? week(*year, *number) : std::nullopt;
  }
  if (!take(text, "-")) return std::nullopt;
  const auto month = takeNumber(text, 1, 2);
  if (!month || !isDate({*year, *month, 1})) return std::nullopt;
  if (text.empty()) return Period{firstOfMonth(*year, *month), lastOfMonth(*year, *month)};
  if (!take(text, "-")) return std::nullopt;
  const auto day = takeNumber(text, 1, 2);
  if (!day || !text.empty() || !isDate({*year, *month, *day})) return std::nullopt;
  return Period{{*year, *month, *day}, {*year, *month, *day}};
}

std::optional<Period> parseOne(std::string_view text, const CalendarDate& today) {
  auto period = parseWord(text, today);
  if (!period) period = parseLastDays(text, today);
  if (!period) period = parseDates(text);
  if (!period || !isDate(period->first) || !isDate(period->last)) return std::nullopt;
  return period;
}

PeriodError unknownPeriod(std::string_view text) {
  return PeriodError(
      "unknown period " + inQuotes(text) +
      "; write it as today, yesterday, monday, 3d, week, last-week, month, last-month, year, 2025, "
      "2025-03, 2025-W10, 2025-03-04, 2025-03-04..2025-03-10, 2025-03-04.. or monday..today");
}

}  // namespace

int dayCount(const Period& period) {
  return daysBetween(period.first, period.last) + 1;
}

std::string longPeriodText(const Period& period) {
  if (period.first == period.last) return longDateText(period.first);
  return longDateText(period.first) + " to " + longDateText(period.last);
}

const std::vector<std::string>& periodWords() {
  static const std::vector<std::string> kWords{
      "today",  "yesterday", "week",      "last-week", "month",  "last-month", "year",
      "monday", "tuesday",   "wednesday", "thursday",  "friday", "saturday",   "sunday"};
  return kWords;
}

Period parsePeriod(std::string_view text, const CalendarDate& today) {
  const std::string lower = lowerCaseAscii(text);
  const auto dots = lower.find("..");
  auto period = parseOne(std::string_view(lower).substr(0, dots), today);
  if (!period) throw unknownPeriod(text);
  if (dots == std::string::npos) return *period;

  const auto behind = std::string_view(lower).substr(dots + 2);
  const auto end = behind.empty() ? Period{today, today} : parseOne(behind, today);
  if (!end) throw unknownPeriod(text);
  period->last = end->last;
  if (dayCount(*period) < 1) {
    throw PeriodError("the period " + inQuotes(text) + " ends on " + dateText(period->last) +
                      ", before it begins on " + dateText(period->first));
  }
  return *period;
}

}  // namespace tessum
