#include <time.h>

#include "core/platform/steady_clock.h"

namespace tessum {
namespace {

double secondsOf(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

}  // namespace

Moment SystemSteadyClock::now() const {
  return {secondsOf(CLOCK_BOOTTIME)};
}

double SystemSteadyClock::secondsAsleep() const {
  return secondsOf(CLOCK_BOOTTIME) - secondsOf(CLOCK_MONOTONIC);
}

}  // namespace tessum
