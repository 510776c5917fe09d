// The X server's own counters.

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tessum {

// Finds the counter called `name` in the server's list, which is in this machine's byte order.
// Absent when it is not there or the list is truncated before it. Any thread.
[[nodiscard]] std::optional<std::uint32_t> counterNamed(std::string_view name,
                                                        std::string_view list);

}  // namespace tessum
