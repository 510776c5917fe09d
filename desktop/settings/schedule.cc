#include "desktop/settings/schedule.h"

#include <algorithm>
#include <array>

namespace tessum {
namespace {

constexpr int kMinutesOfDay = 24 * 60;

// A number of one or two digits.
std::optional<int> parseNumber(std::string_view text) {
  if (text.empty() || text.size() > 2) return std::nullopt;
  int number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + (c - '0');
  }
  return number;
}

}  // namespace

bool includes(const Schedule& schedule, const WallTime& time) {
  const int minute = time.hour * 60 + time.minute;
  const auto day = static_cast<std::size_t>(time.weekday);
  const auto [begin, end] = schedule.hours;
  if (begin < end) return schedule.days[day] && begin <= minute && minute < end;
  const std::size_t dayBefore = (day + 6) % 7;
  return (schedule.days[day] && minute >= begin) || (schedule.days[dayBefore] && minute < end);
}

Date nextEdge(const Schedule& schedule, Date now) {
  const Date begin = nextTimeOfDay(schedule.hours.begin % kMinutesOfDay, now);
  const Date end = nextTimeOfDay(schedule.hours.end % kMinutesOfDay, now);
  return secondsBetween(begin, end) < 0 ? end : begin;
}

std::optional<int> parseTimeOfDay(std::string_view text) {
  const auto colon = text.find(':');
  if (colon == std::string_view::npos || text.size() - colon != 3) return std::nullopt;
  const auto hours = parseNumber(text.substr(0, colon));
  const auto minutes = parseNumber(text.substr(colon + 1));
  if (!hours || !minutes || *minutes > 59) return std::nullopt;
  const int time = *hours * 60 + *minutes;
  if (time > kMinutesOfDay) return std::nullopt;
  return time;
}

std::optional<Hours> parseHours(std::string_view text) {
  const auto dash = text.find('-');
  if (dash == std::string_view::npos) return std::nullopt;
  const auto begin = parseTimeOfDay(text.substr(0, dash));
  const auto end = parseTimeOfDay(text.substr(dash + 1));
  if (!begin || !end || *begin == kMinutesOfDay || *begin == *end) return std::nullopt;
  return Hours{*begin, *end};
}

std::optional<std::size_t> parseWeekday(std::string_view text) {
  constexpr std::array<std::string_view, 7> kNames{"sun", "mon", "tue", "wed", "thu", "fri", "sat"};
  const auto found = std::find(kNames.begin(), kNames.end(), text);
  if (found == kNames.end()) return std::nullopt;
  return static_cast<std::size_t>(found - kNames.begin());
}

}  // namespace tessum
