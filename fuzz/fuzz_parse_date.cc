// A date in one of five zones: the result is the beginning of its day.

#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "core/base/check.h"
#include "core/mcp/date_argument.h"
#include "fuzz/input.h"

namespace {

// Days without a midnight, with two, one that was skipped, and shifts by half an hour. These are
// putenv() texts, because setenv() would leak the old value.
char zones[][24] = {"TZ=America/Sao_Paulo", "TZ=America/Havana", "TZ=Pacific/Apia",
                    "TZ=Australia/Lord_Howe", "TZ=UTC"};
constexpr double kHour = 60 * 60;

// Before 1900 places used solar time, and when Samoa crossed the date line in 1892 it repeated one
// day: 48 hours.
constexpr double kStartOf1900 = -2208988800;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessum;

  FuzzInput input(data, size);
  putenv(zones[input.takeByte() % std::size(zones)]);
  const SystemCalendar calendar;
  const auto date = parseDate(input.takeRest(), calendar);
  if (!date) return 0;

  const DayRange day = calendar.dayOf(*date);
  const double length = secondsBetween(day.start, day.end);
  TESSUM_CHECK(length > 0, "a day ends before it starts");
  TESSUM_CHECK(calendar.dayOf(movedBy(day.end, -1)) == day, "a day lacks its last second");
  if (date->secondsSince1970 < kStartOf1900) return 0;
  // A skipped date reads as the beginning of the date that took its place.
  TESSUM_CHECK(day.start == *date, "a date is not the beginning of its day");
  TESSUM_CHECK(length >= 22 * kHour && length <= 26 * kHour, "a day of an unlikely length");
  return 0;
}
