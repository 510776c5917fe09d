#include "core/platform/calendar.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/environment.h"

namespace tessum {
namespace {

// Days as UTC texts, from the zone data that the system has.
struct DayCase {
  const char* zone;
  CalendarDate date;
  const char* start;
  double hours;
};

class LocalDay : public testing::TestWithParam<DayCase> {};

TEST_P(LocalDay, RunsFromItsFirstInstantToThatOfTheNextDate) {
  const ScopedVariable zone("TZ", GetParam().zone);
  const SystemCalendar calendar;
  const auto start = calendar.startOf(GetParam().date);
  ASSERT_TRUE(start.has_value());
  EXPECT_EQ(internetDateTime(*start), GetParam().start);

  const double length = GetParam().hours * 3600;
  const DayRange expected{*start, movedBy(*start, length)};
  for (const double inside : {0.0, 0.5, length / 2, length - 1}) {
    EXPECT_EQ(calendar.dayOf(movedBy(*start, inside)), expected) << inside;
  }
  EXPECT_EQ(calendar.dayOf(movedBy(*start, -1)).end, *start);
  EXPECT_EQ(calendar.dayOf(expected.end).start, expected.end);
}

INSTANTIATE_TEST_SUITE_P(
    Zones, LocalDay,
    testing::Values(DayCase{"UTC", {2025, 3, 4}, "2025-03-04T00:00:00Z", 24},
                    DayCase{"UTC", {1970, 1, 1}, "1970-01-01T00:00:00Z", 24},
                    DayCase{"UTC", {2024, 2, 29}, "2024-02-29T00:00:00Z", 24},
                    DayCase{"UTC", {2024, 12, 31}, "2024-12-31T00:00:00Z", 24},
                    DayCase{"Europe/Berlin", {2025, 3, 30}, "2025-03-29T23:00:00Z", 23},
                    DayCase{"Europe/Berlin", {2025, 10, 26}, "2025-10-25T22:00:00Z", 25},
                    DayCase{"America/New_York", {2025, 3, 9}, "2025-03-09T05:00:00Z", 23},
                    DayCase{"Asia/Kolkata", {2025, 3, 4}, "2025-03-03T18:30:00Z", 24},
                    // Midnight does not exist: the clock goes from 23:59:59 to 01:00.
                    DayCase{"America/Sao_Paulo", {2018, 11, 4}, "2018-11-04T03:00:00Z", 23},
                    DayCase{"America/Sao_Paulo", {2018, 11, 3}, "2018-11-03T03:00:00Z", 24},
                    // Midnight comes twice: the clock goes back from 01:00.
                    DayCase{"America/Havana", {2024, 11, 3}, "2024-11-03T04:00:00Z", 25},
                    DayCase{"America/Havana", {2024, 11, 2}, "2024-11-02T04:00:00Z", 24},
                    // The zone crossed the date line: there was no 30 December.
                    DayCase{"Pacific/Apia", {2011, 12, 29}, "2011-12-29T10:00:00Z", 24},
                    DayCase{"Pacific/Apia", {2011, 12, 31}, "2011-12-30T10:00:00Z", 24},
                    // Half an hour of daylight saving.
                    DayCase{"Australia/Lord_Howe", {2025, 4, 6}, "2025-04-05T13:00:00Z", 24.5},
                    DayCase{"Australia/Lord_Howe", {2025, 10, 5}, "2025-10-04T13:30:00Z", 23.5}));

TEST(Calendar, TakesTheNextDateForOneThatTheZoneSkipped) {
  const ScopedVariable zone("TZ", "Pacific/Apia");
  const SystemCalendar calendar;
  EXPECT_EQ(calendar.startOf({2011, 12, 30}), calendar.startOf({2011, 12, 31}));
}

// The clock went back at one minute past midnight, so that the date began, was left for an hour
// and began again.
TEST(Calendar, TakesTheFirstOfTwoBeginnings) {
  const ScopedVariable zone("TZ", "America/St_Johns");
  const SystemCalendar calendar;
  EXPECT_EQ(internetDateTime(*calendar.startOf({2010, 11, 7})), "2010-11-07T02:30:00Z");
}

TEST(Calendar, HonoursAChangeOfZoneAtOnce) {
  const SystemCalendar calendar;
  ScopedVariable zone("TZ", "UTC");
  EXPECT_EQ(internetDateTime(*calendar.startOf({2025, 3, 4})), "2025-03-04T00:00:00Z");
  setenv("TZ", "Asia/Tokyo", 1);  // without calling tzset()
  EXPECT_EQ(internetDateTime(*calendar.startOf({2025, 3, 4})), "2025-03-03T15:00:00Z");
  EXPECT_EQ(internetDateTime(calendar.dayOf({0}).start), "1969-12-31T15:00:00Z");
}

TEST(Calendar, KnowsWhichDatesExist) {
  const ScopedVariable zone("TZ", "UTC");
  const SystemCalendar calendar;
  EXPECT_TRUE(calendar.startOf({2000, 2, 29}).has_value());
  EXPECT_TRUE(calendar.startOf({1, 1, 1}).has_value());
  EXPECT_TRUE(calendar.startOf({9999, 12, 31}).has_value());
  for (const CalendarDate& date :
       {CalendarDate{1900, 2, 29}, CalendarDate{2025, 2, 29}, CalendarDate{2025, 4, 31},
        CalendarDate{2025, 0, 1}, CalendarDate{2025, 13, 1}, CalendarDate{2025, 1, 0},
        CalendarDate{2025, 1, 32}}) {
    EXPECT_FALSE(calendar.startOf(date).has_value()) << date.month << "-" << date.day;
  }
}

TEST(Calendar, FindsTheDayBefore) {
  const SystemCalendar calendar;
  ScopedVariable zone("TZ", "Europe/Berlin");
  const auto yesterday = [&](const CalendarDate& date) {
    return calendar.dayOf(calendar.dayBefore(movedBy(*calendar.startOf(date), 3600)));
  };
  EXPECT_EQ(yesterday({2025, 3, 31}).start, calendar.startOf({2025, 3, 30}));
  EXPECT_EQ(yesterday({2025, 1, 1}).start, calendar.startOf({2024, 12, 31}));
  zone.set("Pacific/Apia");
  EXPECT_EQ(yesterday({2011, 12, 31}).start, calendar.startOf({2011, 12, 29}));
}

TEST(CalendarDeathTest, StopsTheProcessForADateBeyondIt) {
  const SystemCalendar calendar;
  EXPECT_DEATH(static_cast<void>(calendar.dayOf({1e300})), "outside the calendar");
}

}  // namespace
}  // namespace tessum
