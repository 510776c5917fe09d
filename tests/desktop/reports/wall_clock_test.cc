#include "desktop/reports/wall_clock.h"

#include <gtest/gtest.h>

#include "tests/support/environment.h"

namespace tessum {
namespace {

struct Case {
  const char* zone;
  const char* now;
  int minute;
  const char* next;
};

class NextTimeOfDay : public testing::TestWithParam<Case> {};

TEST_P(NextTimeOfDay, IsWhenTheWallShowsIt) {
  const ScopedVariable zone("TZ", GetParam().zone);
  const auto next = parseInternetDateTime(GetParam().next);
  const auto now = parseInternetDateTime(GetParam().now);
  ASSERT_TRUE(next && now);
  EXPECT_EQ(internetDateTime(nextTimeOfDay(GetParam().minute, *now)), GetParam().next);
  EXPECT_EQ(internetDateTime(nextTimeOfDay(GetParam().minute, movedBy(*now, 0.9))),
            GetParam().next);
}

// Berlin's clocks go from 2:00 to 3:00 at 2025-03-30T01:00:00Z, and from 3:00 back to 2:00 at
// 2025-10-26T01:00:00Z.
INSTANTIATE_TEST_SUITE_P(
    All, NextTimeOfDay,
    testing::Values(Case{"UTC", "2025-03-04T09:00:00Z", 18 * 60, "2025-03-04T18:00:00Z"},
                    Case{"UTC", "2025-03-04T18:00:00Z", 18 * 60, "2025-03-05T18:00:00Z"},
                    Case{"UTC", "2025-03-04T18:00:01Z", 18 * 60, "2025-03-05T18:00:00Z"},
                    Case{"UTC", "2025-03-04T09:00:00Z", 0, "2025-03-05T00:00:00Z"},
                    // A day of 23 hours: before the leap, in it, and behind it.
                    Case{"Europe/Berlin", "2025-03-29T23:00:00Z", 18 * 60, "2025-03-30T16:00:00Z"},
                    Case{"Europe/Berlin", "2025-03-29T23:00:00Z", 60, "2025-03-30T00:00:00Z"},
                    Case{"Europe/Berlin", "2025-03-29T23:00:00Z", 150, "2025-03-30T01:00:00Z"},
                    Case{"Europe/Berlin", "2025-03-29T23:00:00Z", 120, "2025-03-30T01:00:00Z"},
                    Case{"Europe/Berlin", "2025-03-29T23:00:00Z", 180, "2025-03-30T01:00:00Z"},
                    Case{"Europe/Berlin", "2025-03-29T23:00:00Z", 181, "2025-03-30T01:01:00Z"},
                    Case{"Europe/Berlin", "2025-03-30T01:00:00Z", 18 * 60, "2025-03-30T16:00:00Z"},
                    // A day of 25 hours.
                    Case{"Europe/Berlin", "2025-10-25T22:00:00Z", 18 * 60, "2025-10-26T17:00:00Z"},
                    Case{"Europe/Berlin", "2025-10-25T22:00:00Z", 150, "2025-10-26T00:30:00Z"},
                    Case{"Europe/Berlin", "2025-10-26T00:45:00Z", 150, "2025-10-26T01:30:00Z"},
                    Case{"Europe/Berlin", "2025-10-26T00:45:00Z", 120, "2025-10-26T01:00:00Z"},
                    Case{"Europe/Berlin", "2025-10-26T00:45:00Z", 18 * 60, "2025-10-26T17:00:00Z"}),
    [](const auto& tested) { return std::to_string(tested.index); });

}  // namespace
}  // namespace tessum
