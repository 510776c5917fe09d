// Points in time, and the one place where they become text.

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessum {

// A point in time: seconds since 1970-01-01 00:00:00 UTC, with their fraction. Immutable.
struct Date {
  double secondsSince1970 = 0;

  friend bool operator==(const Date&, const Date&) = default;
};

// The seconds from `start` to `end`, negative when `end` comes first.
[[nodiscard]] inline double secondsBetween(Date start, Date end) {
  return end.secondsSince1970 - start.secondsSince1970;
}

// `date` moved by `seconds`, back in time when they are negative.
[[nodiscard]] inline Date movedBy(Date date, double seconds) {
  return {date.secondsSince1970 + seconds};
}

// The earliest point in time that has a four-digit year: 0001-01-01T00:00:00Z.
inline constexpr Date kStartOfYearOne{-62135596800.0};

// Appends `date` as UTC text such as 2025-03-04T09:15:00. Fractions are rounded down. Years beyond
// 9999 take as many digits as they need, years before 0 a minus sign. A date too far away to count
// in whole seconds becomes the farthest one that can be; NaN becomes 1970-01-01T00:00:00.
void appendTimeStamp(std::string& out, Date date);

// The same text with the letter Z that marks UTC, such as 2025-03-04T09:15:00Z.
[[nodiscard]] std::string internetDateTime(Date date);

// Reads the form that internetDateTime() writes for years 0000 to 9999; absent for any other text
// and for dates that do not exist.
[[nodiscard]] std::optional<Date> parseInternetDateTime(std::string_view text);

}  // namespace tessum
