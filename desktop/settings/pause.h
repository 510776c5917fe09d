// A pause requested by the user: nothing is recorded.

#pragma once

#include <optional>
#include <string>

#include "core/base/date.h"
#include "core/platform/files.h"
#include "core/platform/locations.h"

namespace tessum {

struct Pause {
  std::optional<Date> until;  // absent means until it is ended

  friend bool operator==(const Pause&, const Pause&) = default;
};

// The file that holds the pause. It outlives the recorder, and remains when the pause ends by
// itself.
[[nodiscard]] std::string pausePath(const Locations& locations);

// The pause in force at `now`; absent when there is none. An invalid file counts as a pause without
// end, because recording against the user's wish would be worse. Throws std::system_error when it
// cannot be read.
[[nodiscard]] std::optional<Pause> pauseAt(Date now, const Locations& locations,
                                           const Files& files);

// Begins a pause, which replaces any other. Creates the data folder if missing. Throws
// std::system_error.
void beginPause(const Pause& pause, const Locations& locations, const Files& files);

// Ends the pause, if any. Throws std::system_error.
void endPause(const Locations& locations);

// "until 14:00", with the date if it differs from that at `now`, or "until "Tessum resume"".
[[nodiscard]] std::string pauseText(const Pause& pause, Date now);

}  // namespace tessum
