#include "core/platform/clock.h"

#include <chrono>

namespace tessum {

Date SystemClock::now() const {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return {std::chrono::duration<double>(sinceEpoch).count()};
}

}  // namespace tessum
