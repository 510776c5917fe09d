#include "core/workspace/x11/server_time.h"

#include <algorithm>
#include <cmath>

namespace tessum {
namespace {

constexpr double kStamps = 4294967296.0;  // the number of values before they wrap to 0

}  // namespace

Moment X11ServerTime::present() {
  latest_ = {std::max(latest_.seconds, clock_.now().seconds)};
  return latest_;
}

Moment X11ServerTime::ofEvent(std::uint32_t stamp) {
  const Moment now = clock_.now();
  const double awake = (now.seconds - clock_.secondsAsleep()) * kMillisecondsPerSecond;
  const double difference = awake - stamp;
  double late = std::remainder(difference - leastDifference_.value_or(difference), kStamps);
  if (!leastDifference_ || late < 0) {
    leastDifference_ = difference;
    late = 0;
  }
  const Moment stamped = movedBy(now, -late / kMillisecondsPerSecond);
  latest_ = {std::max(latest_.seconds, stamped.seconds)};
  return latest_;
}

}  // namespace tessum
