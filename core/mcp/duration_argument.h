// How long something has been going on, as a model or a person writes it.

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tessum {

// The seconds, at least 1, that a text such as 30m, 1h, 1h30m or 45s means; a bare number means
// minutes. Anything else is skipped, so 1.5h is 15 hours, and digits after the last unit are
// ignored. Absent when nothing is left, or more than fits 64 bits. `text` must be UTF-8.
[[nodiscard]] std::optional<std::int64_t> parseDuration(std::string_view text);

}  // namespace tessum
