// Periods: what is read lies in the years 1 to 9999, is not empty, and is found again under its own
// dates; everything else is an error in printable text.

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/base/check.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/periods/period.h"
#include "desktop/text/text_layout.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessum;

  const std::string text(reinterpret_cast<const char*>(data), size);
  const CalendarDate today = daysAfter({2025, 3, 5}, static_cast<int>(size * 37 % 4000));
  try {
    const Period period = parsePeriod(text, today);
    TESSUM_CHECK(isDate(period.first) && isDate(period.last), text);
    TESSUM_CHECK(dayCount(period) >= 1, text);
    const std::string dates = dateText(period.first) + ".." + dateText(period.last);
    TESSUM_CHECK(parsePeriod(dates, today) == period, text);
  } catch (const PeriodError& error) {
    TESSUM_CHECK(printable(error.what()) == error.what(), text);
  }
  return 0;
}
