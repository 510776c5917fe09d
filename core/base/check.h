// The one way to stop the process for a programming error.
//
// A broken condition that correct use cannot meet is reported on standard error and ends the
// process by abort(), in release builds too: going on would write wrong data.

#pragma once

#include <string_view>

namespace tessum {

// Writes `message` to standard error and aborts. Any thread.
[[noreturn]] void stopProcess(std::string_view message);

}  // namespace tessum

// Stops the process with `message` unless `condition` holds.
#define TESSUM_CHECK(condition, message) \
  (static_cast<bool>(condition) ? void(0) : ::tessum::stopProcess(message))
