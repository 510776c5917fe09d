#include "core/json/number.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

namespace tessum::json {
namespace {

TEST(IsNumber, FollowsTheGrammar) {
  for (const char* text : {"0", "-0", "10", "-10", "1.5", "0.1000", "1e5", "1E+5", "1e-05", "0.0e0",
                           "123456789012345678901234567890", "1e400"}) {
    EXPECT_TRUE(isNumber(text)) << text;
  }
  for (const char* text : {"", "-", "+1", "01", "-01", "1.", ".5", "1.e5", "1e", "1e+", "0x10",
                           "1 ", " 1", "1a", "NaN", "Infinity", "1,5", "--1", "1e5.5"}) {
    EXPECT_FALSE(isNumber(text)) << text;
  }
}

struct IntegralCase {
  const char* text;
  std::optional<std::int64_t> value;
};

class IntegralValue : public testing::TestWithParam<IntegralCase> {};

TEST_P(IntegralValue, IsExactHoweverTheNumberIsWritten) {
  EXPECT_EQ(integralValue(GetParam().text), GetParam().value) << GetParam().text;
}

constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();

INSTANTIATE_TEST_SUITE_P(
    Numbers, IntegralValue,
    testing::Values(
        IntegralCase{"0", 0}, IntegralCase{"-0", 0}, IntegralCase{"-0.0e5", 0},
        IntegralCase{"42", 42}, IntegralCase{"-42", -42}, IntegralCase{"10.0", 10},
        IntegralCase{"1e2", 100}, IntegralCase{"1.5e1", 15}, IntegralCase{"1.5", {}},
        IntegralCase{"1e-1", {}}, IntegralCase{"100e-2", 1},
        IntegralCase{"9223372036854775807", kMost}, IntegralCase{"9223372036854775808", {}},
        IntegralCase{"-9223372036854775808", kLeast}, IntegralCase{"-9223372036854775809", {}},
        IntegralCase{"9223372036854775807.000", kMost}, IntegralCase{"9223372036854775807.1", {}},
        IntegralCase{"922337203685477580.7e1", kMost}, IntegralCase{"1e18", 1000000000000000000},
        IntegralCase{"1e19", {}}, IntegralCase{"1e400", {}},
        IntegralCase{"1e99999999999999999999", {}}, IntegralCase{"1e-99999999999999999999", {}},
        IntegralCase{"0e99999999999999999999", 0},
        IntegralCase{"10000000000000000000000e-5", 100000000000000000}, IntegralCase{"abc", {}}));

TEST(NumberText, IsTheShortestThatReadsBack) {
  EXPECT_EQ(numberText(0), "0");
  EXPECT_EQ(numberText(3599.9), "3599.9");
  EXPECT_EQ(numberText(0.1), "0.1");
  EXPECT_EQ(numberText(-2.5), "-2.5");
  EXPECT_EQ(numberText(1e300), "1e+300");
  for (const double value : {1.0 / 3, 1741079700.123456, std::numeric_limits<double>::denorm_min(),
                             std::numeric_limits<double>::max()}) {
    EXPECT_EQ(std::strtod(numberText(value).c_str(), nullptr), value);
    EXPECT_TRUE(isNumber(numberText(value)));
  }
}

TEST(NumberTextDeathTest, StopsTheProcessForInfinity) {
  EXPECT_DEATH(static_cast<void>(numberText(std::numeric_limits<double>::infinity())), "infinity");
}

}  // namespace
}  // namespace tessum::json
