#include "desktop/periods/report_days.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "desktop/periods/calendar_dates.h"
#include "tests/support/environment.h"

namespace tessum {
namespace {

const SystemCalendar kCalendar;

constexpr int kFour = 4 * 60;

struct DayCase {
  const char* zone;
  int startMinute;
  CalendarDate date;
  const char* start;
  double hours;
};

class ReportDay : public testing::TestWithParam<DayCase> {};

TEST_P(ReportDay, RunsFromItsTimeOfDayToThatOfTheNextDate) {
  const ScopedVariable zone("TZ", GetParam().zone);
  const ReportDays days(kCalendar, GetParam().startMinute);
  const DayRange range = days.rangeOf({GetParam().date, GetParam().date});
  EXPECT_EQ(internetDateTime(range.start), GetParam().start);
  EXPECT_EQ(secondsBetween(range.start, range.end) / 3600, GetParam().hours);
  for (const double share : {0.0, 0.01, 0.5, 0.99}) {
    if (GetParam().hours == 0) break;
    const Date inside = movedBy(range.start, share * secondsBetween(range.start, range.end));
    EXPECT_EQ(dateText(days.dayOf(inside)), dateText(GetParam().date)) << share;
  }
  EXPECT_GT(daysBetween(days.dayOf(movedBy(range.start, -0.5)), GetParam().date), 0);
  EXPECT_LT(daysBetween(days.dayOf(range.end), GetParam().date), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Zones, ReportDay,
    testing::Values(
        DayCase{"UTC", 0, {2025, 3, 4}, "2025-03-04T00:00:00Z", 24},
        DayCase{"UTC", kFour, {2025, 3, 4}, "2025-03-04T04:00:00Z", 24},
        DayCase{"UTC", 23 * 60 + 59, {2025, 3, 4}, "2025-03-04T23:59:00Z", 24},
        // The day that loses an hour begins behind the leap at four; the day before is shorter.
        DayCase{"Europe/Berlin", 0, {2025, 3, 30}, "2025-03-29T23:00:00Z", 23},
        DayCase{"Europe/Berlin", kFour, {2025, 3, 30}, "2025-03-30T02:00:00Z", 24},
        DayCase{"Europe/Berlin", kFour, {2025, 3, 29}, "2025-03-29T03:00:00Z", 23},
        DayCase{"Europe/Berlin", kFour, {2025, 10, 25}, "2025-10-25T02:00:00Z", 25},
        // Half past two does not exist, or is there twice.
        DayCase{"Europe/Berlin", 150, {2025, 3, 30}, "2025-03-30T01:00:00Z", 23.5},
        DayCase{"Europe/Berlin", 150, {2025, 10, 26}, "2025-10-26T00:30:00Z", 25},
        // Midnight does not exist, and neither does half past.
        DayCase{"America/Sao_Paulo", 0, {2018, 11, 4}, "2018-11-04T03:00:00Z", 23},
        DayCase{"America/Sao_Paulo", 30, {2018, 11, 4}, "2018-11-04T03:00:00Z", 23.5},
        DayCase{"America/Sao_Paulo", kFour, {2018, 11, 3}, "2018-11-03T07:00:00Z", 23},
        // Midnight comes twice.
        DayCase{"America/Havana", 0, {2024, 11, 3}, "2024-11-03T04:00:00Z", 25},
        DayCase{"America/Havana", kFour, {2024, 11, 3}, "2024-11-03T09:00:00Z", 24},
        // The clock went from one minute past midnight back to 23:01.
        DayCase{"America/St_Johns", 0, {2010, 11, 7}, "2010-11-07T02:30:00Z", 25},
        // There was no 30 December.
        DayCase{"Pacific/Apia", 0, {2011, 12, 29}, "2011-12-29T10:00:00Z", 24},
        DayCase{"Pacific/Apia", 0, {2011, 12, 30}, "2011-12-30T10:00:00Z", 0},
        DayCase{"Pacific/Apia", kFour, {2011, 12, 29}, "2011-12-29T14:00:00Z", 24},
        DayCase{"Pacific/Apia", kFour, {2011, 12, 30}, "2011-12-30T14:00:00Z", 0},
        DayCase{"Pacific/Apia", kFour, {2011, 12, 31}, "2011-12-30T14:00:00Z", 24},
        DayCase{"Australia/Lord_Howe", 0, {2025, 4, 6}, "2025-04-05T13:00:00Z", 24.5}),
    [](const auto& tested) { return std::to_string(tested.index); });

TEST(ReportDays, FollowEachOtherWithoutGapsInEveryZone) {
  for (const char* zoneName : {"Europe/Berlin", "America/Sao_Paulo", "America/St_Johns",
                               "Pacific/Apia", "Asia/Kolkata", "Australia/Lord_Howe"}) {
    const ScopedVariable zone("TZ", zoneName);
    for (const int startMinute : {0, 1, 150, kFour, 23 * 60}) {
      const ReportDays days(kCalendar, startMinute);
      Date start = days.startOf({2010, 1, 1});
      for (int i = 1; i < 1500; ++i) {
        const CalendarDate date = daysAfter({2010, 1, 1}, i);
        const Date next = days.startOf(date);
        ASSERT_LE(secondsBetween(start, next), 26 * 3600) << zoneName << dateText(date);
        ASSERT_GE(secondsBetween(start, next), 0) << zoneName << dateText(date);
        if (secondsBetween(start, next) > 0) {
          ASSERT_EQ(days.dayOf(movedBy(next, -0.5)), days.dayOf(start))
              << zoneName << " " << startMinute << " " << dateText(date);
        }
        start = next;
      }
    }
  }
}

TEST(ReportDays, HaveAPlaceForEveryMoment) {
  const ReportDays days(kCalendar, 0);
  for (const double far : {-1e300, -1e18, 1e18, 1e300}) {
    EXPECT_TRUE(isDate(days.dayOf({far}))) << far;
  }
}

}  // namespace
}  // namespace tessum
