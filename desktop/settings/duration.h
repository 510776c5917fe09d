// Durations as a person writes them.

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessum {

// Seconds of a duration such as 1h30m, 45m, 20s or 90, which are minutes. Absent for any other
// text; unlike the assistants' tools, this must not read 1.5h as 15 hours.
[[nodiscard]] std::optional<double> plainDuration(std::string_view text);

// `seconds` in that form, such as 1h30m; a fraction is dropped.
[[nodiscard]] std::string plainDurationText(double seconds);

}  // namespace tessum
