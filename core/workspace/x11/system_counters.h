// The counters that an X server keeps itself.

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tessum {

// Finds the counter called `name` in the server's list of them, in this machine's byte order.
// Absent when there is none, or the list breaks off before it. Any thread.
[[nodiscard]] std::optional<std::uint32_t> counterNamed(std::string_view name,
                                                        std::string_view list);

}  // namespace tessum
