#include "core/mcp/duration_argument.h"

#include <gtest/gtest.h>

namespace tessum {
namespace {

struct DurationCase {
  const char* text;
  std::optional<std::int64_t> seconds;
};

class ParseDuration : public testing::TestWithParam<DurationCase> {};

TEST_P(ParseDuration, GivesSecondsOrNothing) {
  EXPECT_EQ(parseDuration(GetParam().text), GetParam().seconds) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Usual, ParseDuration,
                         testing::Values(DurationCase{"30m", 1800}, DurationCase{"1h", 3600},
                                         DurationCase{"1h30m", 5400}, DurationCase{"90", 5400},
                                         DurationCase{"45s", 45}, DurationCase{"2H", 7200},
                                         DurationCase{"1H30M10S", 5410},
                                         DurationCase{" 30m\t", 1800}, DurationCase{"1h 30m", 5400},
                                         DurationCase{"30m1h", 5400}, DurationCase{"1m1m", 120}));

INSTANTIATE_TEST_SUITE_P(
    Quirks, ParseDuration,
    testing::Values(DurationCase{"1h30", 3600},        // digits after the last unit are dropped
                    DurationCase{"1.5h", 54000},       // the point is skipped: fifteen hours
                    DurationCase{"1 5 h", 54000},      //
                    DurationCase{"h30m", 1800},        // a unit without digits is ignored
                    DurationCase{"30 minutes", 1800},  // the letters after the unit are skipped
                    DurationCase{"-5m", 300},          //
                    DurationCase{"0m30", 1800},        // the total is still 0: a bare number
                    DurationCase{"5x", 300}, DurationCase{"1é5m", 900}));

INSTANTIATE_TEST_SUITE_P(Nothing, ParseDuration,
                         testing::Values(DurationCase{"", {}}, DurationCase{"0m", {}},
                                         DurationCase{"0", {}}, DurationCase{"abc", {}},
                                         DurationCase{"hms", {}}, DurationCase{" ", {}}));

// Digits that are not ASCII count as digits but do not read as a number.
INSTANTIATE_TEST_SUITE_P(OtherDigits, ParseDuration,
                         testing::Values(DurationCase{"٣0m", {}}, DurationCase{"３０m", {}},
                                         DurationCase{"1h٣0m", 3600}, DurationCase{"3²m", {}},
                                         DurationCase{"½h", {}}, DurationCase{"5𝟘m", {}}));

INSTANTIATE_TEST_SUITE_P(Edges, ParseDuration,
                         testing::Values(DurationCase{"9223372036854775807s", 9223372036854775807},
                                         DurationCase{"9223372036854775808s", {}},
                                         DurationCase{"1h9223372036854775808m", 3600},
                                         DurationCase{"000000000000000000000000000001h", 3600},
                                         DurationCase{"2562047788015215h", 9223372036854774000},
                                         DurationCase{"2562047788015216h", {}},
                                         DurationCase{"9223372036854775807s1s", {}},
                                         DurationCase{"153722867280912930", 9223372036854775800},
                                         DurationCase{"153722867280912931", {}}));

}  // namespace
}  // namespace tessum
