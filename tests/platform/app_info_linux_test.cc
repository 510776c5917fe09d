#include "core/platform/app_info.h"

#include <gtest/gtest.h>

namespace tessum {
namespace {

TEST(SystemAppInfo, SaysTheVersionThatWasCompiledIn) {
  EXPECT_EQ(SystemAppInfo().version(), TESSUM_VERSION);
}

}  // namespace
}  // namespace tessum
