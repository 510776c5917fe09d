#include "core/update/version.h"

#include <gtest/gtest.h>

#include <string>

namespace tessum {
namespace {

struct Comparison {
  std::string a;
  std::string b;
  bool aIsNewer;
  bool bIsNewer;
};

class IsNewer : public testing::TestWithParam<Comparison> {};

TEST_P(IsNewer, ComparesTheNumbersFromTheLeft) {
  const auto& [a, b, aIsNewer, bIsNewer] = GetParam();
  EXPECT_EQ(isNewer(a, b), aIsNewer) << a << " against " << b;
  EXPECT_EQ(isNewer(b, a), bIsNewer) << b << " against " << a;
}

INSTANTIATE_TEST_SUITE_P(
    Versions, IsNewer,
    testing::Values(
        Comparison{"1.2", "1.2.0", false, false}, Comparison{"1.2.0", "1.2.0", false, false},
        Comparison{"1.10", "1.9", true, false}, Comparison{"1.10.0", "1.2.0", true, false},
        Comparison{"2", "1.99.99", true, false}, Comparison{"1.2.0.1", "1.2", true, false},
        // Empty pieces add nothing.
        Comparison{"1..2", "1.2", false, false}, Comparison{".1.2.", "1.2", false, false},
        Comparison{"", "", false, false}, Comparison{"...", "0", false, false},
        Comparison{"1", "", true, false},
        // A piece that is not a number is left out, not counted as 0.
        Comparison{"1.2.3-beta", "1.2", false, false},
        Comparison{"1.2.0", "1.2.0-beta", false, false}, Comparison{"2.0rc1", "2", false, false},
        Comparison{"V1.3.0", "1.2.0", true, false}, Comparison{"V1.3.0", "3.0", false, false},
        Comparison{"1. 2", "1", false, false}, Comparison{"1.x.5", "1.5", false, false},
        Comparison{"1.0x10", "1", false, false},
        // Signs.
        Comparison{"+1.+2", "1.2", false, false}, Comparison{"1.-1", "1", false, true},
        Comparison{"1.+-1", "1", false, false}, Comparison{"1.-+1", "1", false, false},
        Comparison{"1.--1", "1", false, false}, Comparison{"1.+.-", "1", false, false},
        Comparison{"-0", "0", false, false}, Comparison{"007", "7", false, false},
        // The ends of 64 bits, and beyond.
        Comparison{"9223372036854775807", "9223372036854775806", true, false},
        Comparison{"9223372036854775808", "", false, false},
        Comparison{"-9223372036854775808", "-9223372036854775807", false, true},
        Comparison{"-9223372036854775809", "", false, false},
        Comparison{"0", "-9223372036854775808", true, false},
        Comparison{"1.9223372036854775808.3", "1.3", false, false}));

TEST(VersionOfTag, DropsOneLowerCaseVOnly) {
  EXPECT_EQ(versionOfTag("v1.2"), "1.2");
  EXPECT_EQ(versionOfTag("vv1.2"), "v1.2");
  EXPECT_EQ(versionOfTag("V1.2"), "V1.2");
  EXPECT_EQ(versionOfTag("1.2"), "1.2");
  EXPECT_EQ(versionOfTag("v"), "");
  EXPECT_EQ(versionOfTag(""), "");
}

}  // namespace
}  // namespace tessum
