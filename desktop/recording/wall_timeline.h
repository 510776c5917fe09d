// The wall clock's time of moments on the steady time line.

#pragma once

#include "core/platform/clock.h"
#include "core/platform/steady_clock.h"

namespace tessum {

// Main thread only.
class WallTimeline {
 public:
  // A smaller difference between the clocks is no change: whoever corrects the time gradually does
  // so in steps far below it.
  static constexpr double kSmallestStep = 1;  // seconds

  // Both must outlive the object.
  WallTimeline(const Clock& wall, const SteadyClock& steady);

  // Whether the wall clock has been set, forward or back, since the last adopt().
  [[nodiscard]] bool wasSet() const;

  // Follows the wall clock as it is now.
  void adopt();

  // What the wall clock showed at `moment` if it was not set since then.
  [[nodiscard]] Date dateOf(Moment moment) const;

 private:
  [[nodiscard]] Date start() const;

  const Clock& wall_;
  const SteadyClock& steady_;
  Date start_;  // of the steady time line
};

}  // namespace tessum
