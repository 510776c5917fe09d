// The time stamps of an X server as moments.

#pragma once

#include <cstdint>
#include <optional>

#include "core/platform/steady_clock.h"

namespace tessum {

// A server stamps its events with the milliseconds of a clock of its own, which starts anywhere,
// stands still while the computer sleeps and starts again at 0 after 49.7 days. The event that came
// in fastest shows how far that clock is behind ours. No moment is in the future or before one that
// was given earlier. Not thread-safe.
class X11ServerTime {
 public:
  // `clock` must outlive this object.
  explicit X11ServerTime(const SteadyClock& clock) : clock_(clock) {}

  // The present, for what comes without a stamp.
  [[nodiscard]] Moment present();

  // When the event was stamped that comes in now.
  [[nodiscard]] Moment ofEvent(std::uint32_t stamp);

 private:
  const SteadyClock& clock_;
  std::optional<double> leastDifference_;  // in milliseconds, our clock's from the server's
  Moment latest_;
};

}  // namespace tessum
