// A date as a model or a person writes it.

#pragma once

#include <optional>
#include <string_view>

#include "core/platform/calendar.h"

namespace tessum {

// The beginning of the local day that `text` names as year, month and day: 2025-03-04; one digit
// will do for month and day. Absent for any other text and for dates that do not exist.
[[nodiscard]] std::optional<Date> parseDate(std::string_view text, const Calendar& calendar);

}  // namespace tessum
