// A pause that the user has asked for: nothing is recorded.

#pragma once

#include <optional>
#include <string>

#include "core/base/date.h"
#include "core/platform/files.h"
#include "core/platform/locations.h"

namespace tessum {

struct Pause {
  std::optional<Date> until;  // absent: until it is ended

  friend bool operator==(const Pause&, const Pause&) = default;
};

// The file that holds the pause while there is one. It outlives the recorder, and stays where it is
// when the pause ends by itself.
[[nodiscard]] std::string pausePath(const Locations& locations);

// The pause that lasts at `now`; absent when there is none. A file that cannot be understood is a
// pause without end: recording it would be worse. Throws std::system_error when it cannot be read.
[[nodiscard]] std::optional<Pause> pauseAt(Date now, const Locations& locations,
                                           const Files& files);

// Begins a pause, in the place of another. Makes the data folder where it is missing. Throws
// std::system_error.
void beginPause(const Pause& pause, const Locations& locations, const Files& files);

// Ends the pause, if there is one. Throws std::system_error.
void endPause(const Locations& locations);

// "until 14:00", with the date where that is not the one at `now`, or "until "Tessum resume"".
[[nodiscard]] std::string pauseText(const Pause& pause, Date now);

}  // namespace tessum
