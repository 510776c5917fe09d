#include "core/platform/clock.h"

#include <gtest/gtest.h>

#include <ctime>

namespace tessum {
namespace {

TEST(SystemClock, TellsSecondsSince1970WithTheirFraction) {
  const SystemClock clock;
  const auto before = static_cast<double>(std::time(nullptr));
  const Date now = clock.now();
  // time() may be read from a coarser clock that lags by a tick.
  EXPECT_GE(now.secondsSince1970, before);
  EXPECT_LE(now.secondsSince1970, static_cast<double>(std::time(nullptr)) + 2);
}

}  // namespace
}  // namespace tessum
