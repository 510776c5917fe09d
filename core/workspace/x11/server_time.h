// Converts an X server's time stamps to moments.

#pragma once

#include <cstdint>
#include <optional>

#include "core/platform/steady_clock.h"

namespace tessum {

// A server stamps its events in milliseconds of its own clock, which starts at an arbitrary value,
// stops while the computer sleeps and wraps to 0 after 49.7 days. The event that arrived fastest
// shows the difference between that clock and ours. No moment is in the future or before one
// returned earlier. Not thread-safe.
class X11ServerTime {
 public:
  // `clock` must outlive this object.
  explicit X11ServerTime(const SteadyClock& clock) : clock_(clock) {}

  // The present, for events without a stamp.
  [[nodiscard]] Moment present();

  // The moment of an event that arrives now with `stamp`.
  [[nodiscard]] Moment ofEvent(std::uint32_t stamp);

 private:
  const SteadyClock& clock_;
  std::optional<double> leastDifference_;  // in milliseconds, our clock's from the server's
  Moment latest_;
};

}  // namespace tessum
