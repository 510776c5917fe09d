#include "core/base/described_error.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace tessum {
namespace {

const std::string kWithNul("Unknown name: a\0b", 17);

TEST(DescribedError, KeepsADescriptionWithANul) {
  const DescribedError error(kWithNul);
  EXPECT_EQ(error.description(), kWithNul);
  EXPECT_STREQ(error.what(), "Unknown name: a");
}

TEST(DescriptionOf, IsTheWholeDescriptionOrWhat) {
  EXPECT_EQ(descriptionOf(DescribedError(kWithNul)), kWithNul);
  EXPECT_EQ(descriptionOf(std::runtime_error("no memory")), "no memory");
}

}  // namespace
}  // namespace tessum
