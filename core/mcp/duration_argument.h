// How long something has been going on, as a model or a person writes it.

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tessum {

// Seconds, at least 1, of a text such as 30m, 1h, 1h30m or 45s; a bare number means minutes.
// Everything else in the text is skipped: 1.5h are 15 hours, and digits behind the last unit
// count for nothing. Absent when nothing was read, or more than 64 bits hold. `text` is UTF-8.
[[nodiscard]] std::optional<std::int64_t> parseDuration(std::string_view text);

}  // namespace tessum
