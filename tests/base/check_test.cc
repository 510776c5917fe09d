#include "core/base/check.h"

#include <gtest/gtest.h>

namespace tessum {
namespace {

TEST(CheckDeathTest, StopsTheProcessWithItsMessage) {
  EXPECT_DEATH(TESSUM_CHECK(1 + 1 == 3, "sums are wrong"), "Tessum stopped: sums are wrong");
}

TEST(Check, LetsATrueConditionPass) {
  TESSUM_CHECK(true, "never said");
}

}  // namespace
}  // namespace tessum
