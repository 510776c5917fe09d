// Whether the recorder runs, as other processes can tell.

#pragma once

#include <optional>
#include <string>

#include "core/base/date.h"
#include "core/platform/locations.h"
#include "core/store/records.h"

namespace tessum {

struct RecorderState {
  bool isRecording = false;
  std::optional<Date> since;  // absent while it does not run
};

// Looks at the lock that a recorder holds for as long as it runs; nothing is created. Throws
// std::system_error when the lock file is there but cannot be looked at.
[[nodiscard]] RecorderState recorderState(const Locations& locations);

// The one of `openSessions`, which come oldest first, that the recorder is in the middle of;
// absent when it does not run or has none. The others were left open by a run that was cut off.
[[nodiscard]] std::optional<Activity> currentSession(const RecorderState& state,
                                                     const std::vector<Activity>& openSessions);

}  // namespace tessum
