// Hours and days of the week.

#pragma once

#include <bitset>
#include <optional>
#include <string_view>

#include "desktop/periods/wall_clock.h"

namespace tessum {

// From one time of day up to, but not including, another, in minutes after midnight. If the end is
// before the beginning, it is on the next day.
struct Hours {
  int begin = 0;
  int end = 24 * 60;

  friend bool operator==(const Hours&, const Hours&) = default;
};

// Days of the week, Sunday at 0.
using Weekdays = std::bitset<7>;
inline constexpr Weekdays kEveryDay{0x7F};

// Hours on days of the week. Hours that cross midnight belong to the day on which they begin.
struct Schedule {
  Hours hours;
  Weekdays days = kEveryDay;

  friend bool operator==(const Schedule&, const Schedule&) = default;
};

[[nodiscard]] bool includes(const Schedule& schedule, const WallTime& time);

// The first moment after `now` at which the schedule may begin or end.
[[nodiscard]] Date nextEdge(const Schedule& schedule, Date now);

// Minutes after midnight of a text such as 09:15 or 9:15; 24:00 is allowed.
[[nodiscard]] std::optional<int> parseTimeOfDay(std::string_view text);

// Hours such as 18:00-08:00. Absent for any other text, and when beginning and end are equal.
[[nodiscard]] std::optional<Hours> parseHours(std::string_view text);

// The day of the week, 0 for Sunday, of a text such as "mon".
[[nodiscard]] std::optional<std::size_t> parseWeekday(std::string_view text);

}  // namespace tessum
