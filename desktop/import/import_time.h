// Times of other programs' exports.

#pragma once

#include <optional>
#include <string_view>

#include "core/base/date.h"

namespace tessum {

// A time by RFC 3339, with or without a fraction of a second and at any distance from UTC, such as
// 2025-03-04T09:15:00.25+01:00. Absent for any other text.
[[nodiscard]] std::optional<Date> parseOffsetDateTime(std::string_view text);

// Whether `date` lies in the years that the history can show.
[[nodiscard]] bool isInHistory(Date date);

}  // namespace tessum
