#include "desktop/recording/wall_timeline.h"

#include <cmath>

namespace tessum {

WallTimeline::WallTimeline(const Clock& wall, const SteadyClock& steady)
    : wall_(wall), steady_(steady), start_(start()) {}

bool WallTimeline::wasSet() const {
  return std::abs(secondsBetween(start_, start())) >= kSmallestStep;
}

void WallTimeline::adopt() {
  start_ = start();
}

Date WallTimeline::dateOf(Moment moment) const {
  return movedBy(start_, moment.seconds);
}

Date WallTimeline::start() const {
  return movedBy(wall_.now(), -steady_.now().seconds);
}

}  // namespace tessum
