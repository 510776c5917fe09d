// Hours, times of day and durations: results are in range, and a schedule's next edge comes within
// a day or so.

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/base/check.h"
#include "desktop/settings/duration.h"
#include "desktop/settings/schedule.h"
#include "desktop/settings/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessum;

  constexpr int kMinutesOfDay = 24 * 60;
  constexpr double kLongestDay = 26 * 3600;
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (const auto minute = parseTimeOfDay(text)) {
    TESSUM_CHECK(*minute >= 0 && *minute <= kMinutesOfDay, text);
  }
  if (const auto seconds = plainDuration(text)) {
    TESSUM_CHECK(*seconds >= 1, text);
    if (*seconds < 1e15) TESSUM_CHECK(plainDuration(plainDurationText(*seconds)) == seconds, text);
  }
  if (const auto awayAfter = parseAwayAfter(text)) {
    TESSUM_CHECK(parseAwayAfter(awayAfterText(*awayAfter)) == awayAfter, text);
  }
  if (const auto hours = parseHours(text)) {
    const Date now{static_cast<double>(size) * 40'000'003};
    const double wait = secondsBetween(now, nextEdge({*hours}, now));
    TESSUM_CHECK(wait > 0 && wait < kLongestDay, text);
  }
  return 0;
}
