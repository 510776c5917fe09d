// Converts steady moments to wall-clock time.

#pragma once

#include "core/platform/clock.h"
#include "core/platform/steady_clock.h"

namespace tessum {

// Main thread only.
class WallTimeline {
 public:
  // A smaller difference between the clocks does not count as a change: gradual corrections use far
  // smaller steps.
  static constexpr double kSmallestStep = 1;  // seconds

  // Both must outlive the object.
  WallTimeline(const Clock& wall, const SteadyClock& steady);

  // Whether the wall clock has been set, forward or back, since the last adopt().
  [[nodiscard]] bool wasSet() const;

  // Adopts the wall clock's current time.
  void adopt();

  // What the wall clock showed at `moment`, assuming it was not set since.
  [[nodiscard]] Date dateOf(Moment moment) const;

 private:
  [[nodiscard]] Date start() const;

  const Clock& wall_;
  const SteadyClock& steady_;
  Date start_;  // where the steady clock is 0
};

}  // namespace tessum
