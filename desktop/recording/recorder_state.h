// What the recorder says of itself, for other processes.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/base/date.h"
#include "core/platform/locations.h"
#include "core/store/records.h"

namespace tessum {

struct RecorderState {
  bool isRecording = false;
  bool hasEnded = false;  // the last recorder ended by itself, and was not cut off

  // What follows is of the last recorder when none runs.
  std::optional<Date> since = {};       // when it began; absent where no recorder ever ran
  std::optional<Date> lastSign = {};    // when it was last known to live
  std::string way = {};                 // how the desktop tells what is in front, such as "X11"
  std::optional<Date> awaySince = {};   // absent while the user is there
  std::string notice = {};              // of the desktop, while it shows nothing; else empty
  std::vector<std::string> awake = {};  // what keeps the user from being away, as a person reads it
};

// The file whose lock a recorder holds for as long as it runs. It holds what stateText() gives.
[[nodiscard]] std::string recorderFile(const Locations& locations);

// What a recorder says of itself as the content of its file.
[[nodiscard]] std::string stateText(const RecorderState& state);

// Looks at that file; nothing is created and no lock is taken. Throws std::system_error when it is
// there but cannot be looked at.
[[nodiscard]] RecorderState recorderState(const Locations& locations);

// The one of `openSessions`, which come oldest first, that the recorder is in the middle of;
// absent when it does not run or has none. The others were left open.
[[nodiscard]] std::optional<Activity> currentSession(const RecorderState& state,
                                                     const std::vector<Activity>& openSessions);

}  // namespace tessum
