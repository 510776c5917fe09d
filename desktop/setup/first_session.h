// Waits for the recorder to write its first session.

#pragma once

#include <optional>

#include "core/store/records.h"
#include "desktop/host/host.h"

namespace tessum {

struct FirstSession {
  bool isRecording = false;              // a recorder runs at the end of the wait
  bool isAway = false;                   // and the user is away
  std::optional<Activity> session = {};  // the newest of this recorder's; absent when none came
};

// Waits until a session of the running recorder is in the history, for `seconds` at most, and not
// while the user is away. Throws DatabaseError and std::system_error.
[[nodiscard]] FirstSession waitForFirstSession(const Host& host, double seconds);

}  // namespace tessum
