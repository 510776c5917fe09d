// On macOS CLOCK_MONOTONIC goes on while the computer sleeps and CLOCK_UPTIME_RAW stands still.

#include <time.h>

#include "core/platform/steady_clock.h"

namespace tessum {
namespace {

double secondsOf(clockid_t clock) {
  return static_cast<double>(clock_gettime_nsec_np(clock)) / 1e9;
}

}  // namespace

Moment SystemSteadyClock::now() const {
  return {secondsOf(CLOCK_MONOTONIC)};
}

double SystemSteadyClock::secondsAsleep() const {
  return secondsOf(CLOCK_MONOTONIC) - secondsOf(CLOCK_UPTIME_RAW);
}

}  // namespace tessum
