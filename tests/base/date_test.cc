#include "core/base/date.h"

#include <gtest/gtest.h>

#include <limits>

namespace tessum {
namespace {

struct StampCase {
  double seconds;
  const char* stamp;
};

class TimeStamp : public testing::TestWithParam<StampCase> {};

TEST_P(TimeStamp, IsUtcWithTheFractionDroppedTowardThePast) {
  EXPECT_EQ(internetDateTime({GetParam().seconds}), GetParam().stamp);
}

INSTANTIATE_TEST_SUITE_P(Dates, TimeStamp,
                         testing::Values(StampCase{0, "1970-01-01T00:00:00Z"},
                                         StampCase{0.999, "1970-01-01T00:00:00Z"},
                                         StampCase{-0.001, "1969-12-31T23:59:59Z"},
                                         StampCase{-1, "1969-12-31T23:59:59Z"},
                                         StampCase{1741079700, "2025-03-04T09:15:00Z"},
                                         StampCase{1709164800, "2024-02-29T00:00:00Z"},
                                         StampCase{951782400, "2000-02-29T00:00:00Z"},
                                         StampCase{-2203891200, "1900-03-01T00:00:00Z"},
                                         StampCase{253402300799, "9999-12-31T23:59:59Z"},
                                         StampCase{253402300800, "10000-01-01T00:00:00Z"},
                                         StampCase{-62135596800, "0001-01-01T00:00:00Z"},
                                         StampCase{-62135596801, "0000-12-31T23:59:59Z"},
                                         StampCase{-62167219201, "-0001-12-31T23:59:59Z"}));

TEST(TimeStamp, StaysTextForValuesThatAreNoDate) {
  using Limits = std::numeric_limits<double>;
  EXPECT_EQ(internetDateTime({Limits::quiet_NaN()}), "1970-01-01T00:00:00Z");
  EXPECT_EQ(internetDateTime({Limits::infinity()}), internetDateTime({Limits::max()}));
  EXPECT_EQ(internetDateTime({-Limits::infinity()}), internetDateTime({Limits::lowest()}));
  EXPECT_EQ(internetDateTime({Limits::infinity()}).substr(0, 9), "285428751");
  EXPECT_EQ(internetDateTime({-Limits::infinity()}).substr(0, 10), "-285424812");
}

TEST(Date, MovesAndMeasuresInSeconds) {
  EXPECT_EQ(secondsBetween({10.5}, {12}), 1.5);
  EXPECT_EQ(secondsBetween({12}, {10.5}), -1.5);
  EXPECT_EQ(movedBy({10.5}, -0.5), Date{10});
}

struct ParseCase {
  const char* text;
  std::optional<double> seconds;
};

class InternetDateTime : public testing::TestWithParam<ParseCase> {};

TEST_P(InternetDateTime, ReadsTheFormItWrites) {
  const auto date = parseInternetDateTime(GetParam().text);
  ASSERT_EQ(date.has_value(), GetParam().seconds.has_value());
  EXPECT_EQ(date.value_or(Date{}).secondsSince1970, GetParam().seconds.value_or(0));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, InternetDateTime,
    testing::Values(ParseCase{"1970-01-01T00:00:00Z", 0},
                    ParseCase{"2025-03-04T09:15:00Z", 1741079700},
                    ParseCase{"0001-01-01T00:00:00Z", -62135596800},
                    ParseCase{"2024-02-29T23:59:59Z", 1709251199},
                    ParseCase{"2023-02-29T00:00:00Z", {}}, ParseCase{"2025-13-01T00:00:00Z", {}},
                    ParseCase{"2025-03-04T24:00:00Z", {}}, ParseCase{"2025-03-04T09:60:00Z", {}},
                    ParseCase{"2025-03-04T09:15:60Z", {}}, ParseCase{"2025-03-04T09:15:00", {}},
                    ParseCase{"2025-03-04T09:15:00.5Z", {}}, ParseCase{"2025-03-04 09:15:00Z", {}},
                    ParseCase{"2025-03-04", {}}, ParseCase{"", {}},
                    ParseCase{"20x5-03-04T09:15:00Z", {}}));

}  // namespace
}  // namespace tessum
