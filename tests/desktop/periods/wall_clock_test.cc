#include "desktop/periods/wall_clock.h"

#include <gtest/gtest.h>

#include "tests/support/environment.h"

namespace tessum {
namespace {

struct ClockCase {
  const char* zone;
  const char* now;
  int minute;
  const char* next;
};

class NextTimeOfDay : public testing::TestWithParam<ClockCase> {};

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
constexpr ClockCase kTimesOfDay[] = {
    {"UTC", "2025-03-04T09:00:00Z", 18 * 60, "2025-03-04T18:00:00Z"},
    {"UTC", "2025-03-04T18:00:00Z", 18 * 60, "2025-03-05T18:00:00Z"},
    {"UTC", "2025-03-04T18:00:01Z", 18 * 60, "2025-03-05T18:00:00Z"},
    {"UTC", "2025-03-04T09:00:00Z", 0, "2025-03-05T00:00:00Z"},
    // A day of 23 hours: before, in and after the skipped hour.
    {"Europe/Berlin", "2025-03-29T23:00:00Z", 18 * 60, "2025-03-30T16:00:00Z"},
    {"Europe/Berlin", "2025-03-29T23:00:00Z", 60, "2025-03-30T00:00:00Z"},
    {"Europe/Berlin", "2025-03-29T23:00:00Z", 150, "2025-03-30T01:00:00Z"},
    {"Europe/Berlin", "2025-03-29T23:00:00Z", 120, "2025-03-30T01:00:00Z"},
    {"Europe/Berlin", "2025-03-29T23:00:00Z", 180, "2025-03-30T01:00:00Z"},
    {"Europe/Berlin", "2025-03-29T23:00:00Z", 181, "2025-03-30T01:01:00Z"},
    {"Europe/Berlin", "2025-03-30T01:00:00Z", 18 * 60, "2025-03-30T16:00:00Z"},
    // A day of 25 hours.
    {"Europe/Berlin", "2025-10-25T22:00:00Z", 18 * 60, "2025-10-26T17:00:00Z"},
    {"Europe/Berlin", "2025-10-25T22:00:00Z", 150, "2025-10-26T00:30:00Z"},
    {"Europe/Berlin", "2025-10-26T00:45:00Z", 150, "2025-10-26T01:30:00Z"},
    {"Europe/Berlin", "2025-10-26T00:45:00Z", 120, "2025-10-26T01:00:00Z"},
    {"Europe/Berlin", "2025-10-26T00:45:00Z", 18 * 60, "2025-10-26T17:00:00Z"},
};

INSTANTIATE_TEST_SUITE_P(All, NextTimeOfDay, testing::ValuesIn(kTimesOfDay),
                         [](const auto& tested) { return std::to_string(tested.index); });

struct HourCase {
  const char* zone;
  const char* date;
  const char* end;
  const char* shown;  // what the wall shows at `date`
};

class EndOfHour : public testing::TestWithParam<HourCase> {};

TEST_P(EndOfHour, IsTheNextFullHourOrTheChangeOfTheClock) {
  const ScopedVariable zone("TZ", GetParam().zone);
  const auto date = parseInternetDateTime(GetParam().date);
  ASSERT_TRUE(date);
  EXPECT_EQ(offsetDateTime(*date), GetParam().shown);
  EXPECT_EQ(internetDateTime(endOfHour(*date)), GetParam().end);
  EXPECT_EQ(internetDateTime(endOfHour(movedBy(*date, 0.9))), GetParam().end);
}

INSTANTIATE_TEST_SUITE_P(
    All, EndOfHour,
    testing::Values(HourCase{"UTC", "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z",
                             "2025-03-04T09:00:00+00:00"},
                    HourCase{"UTC", "2025-03-04T09:59:59Z", "2025-03-04T10:00:00Z",
                             "2025-03-04T09:59:59+00:00"},
                    HourCase{"Asia/Kolkata", "2025-03-04T09:00:00Z", "2025-03-04T09:30:00Z",
                             "2025-03-04T14:30:00+05:30"},
                    HourCase{"America/St_Johns", "2025-01-04T09:00:00Z", "2025-01-04T09:30:00Z",
                             "2025-01-04T05:30:00-03:30"},
                    HourCase{"Europe/Berlin", "2025-03-30T00:30:00Z", "2025-03-30T01:00:00Z",
                             "2025-03-30T01:30:00+01:00"},
                    HourCase{"Europe/Berlin", "2025-10-26T00:30:00Z", "2025-10-26T01:00:00Z",
                             "2025-10-26T02:30:00+02:00"},
                    HourCase{"Europe/Berlin", "2025-10-26T01:30:00Z", "2025-10-26T02:00:00Z",
                             "2025-10-26T02:30:00+01:00"},
                    // The clock goes back half an hour at two, to half past one.
                    HourCase{"Australia/Lord_Howe", "2025-04-05T14:45:00Z", "2025-04-05T15:00:00Z",
                             "2025-04-06T01:45:00+11:00"},
                    HourCase{"Australia/Lord_Howe", "2025-04-05T15:00:00Z", "2025-04-05T15:30:00Z",
                             "2025-04-06T01:30:00+10:30"},
                    // The clock went back an hour one minute after midnight.
                    HourCase{"America/St_Johns", "2010-11-07T02:30:00Z", "2010-11-07T02:31:00Z",
                             "2010-11-07T00:00:00-02:30"}),
    [](const auto& tested) { return std::to_string(tested.index); });

}  // namespace
}  // namespace tessum
