// The recorder's state, which it publishes for other processes.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/base/date.h"
#include "core/platform/locations.h"
#include "core/store/records.h"

namespace tessum {

// Seconds by which a recorder's first session may seem to begin before the recorder: each has read
// the clock by itself.
inline constexpr double kStartSlack = 1;

struct RecorderState {
  bool isRecording = false;
  bool hasEnded = false;  // the last recorder ended normally, without a crash

  // When no recorder runs, the following describe the last one.
  std::optional<Date> since = {};      // when it started; absent if no recorder ever ran
  std::optional<Date> lastSign = {};   // when it was last known to run
  std::string way = {};                // the source of what is in front, such as "X11"
  std::optional<Date> awaySince = {};  // absent while the user is present
  std::string notice = {};             // of the desktop, while it shows nothing; else empty
  std::vector<std::string> awake =
      {};  // what keeps the user from being away, as texts for a person
};

// The file that a recorder locks while it runs. Its content is stateText().
[[nodiscard]] std::string recorderFile(const Locations& locations);

// The content of that file.
[[nodiscard]] std::string stateText(const RecorderState& state);

// Reads that file; creates nothing and takes no lock. Throws std::system_error when it exists but
// cannot be read.
[[nodiscard]] RecorderState recorderState(const Locations& locations);

// The one of `openSessions`, oldest first, that the recorder is recording; absent when it is not
// running or has none. The others were left open.
[[nodiscard]] std::optional<Activity> currentSession(const RecorderState& state,
                                                     const std::vector<Activity>& openSessions);

}  // namespace tessum
