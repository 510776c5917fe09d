#include "desktop/settings/schedule.h"

#include <gtest/gtest.h>

#include "tests/support/environment.h"

namespace tessum {
namespace {

// Of a day of the week, 0 for Sunday.
WallTime timeOf(int weekday, int hour, int minute) {
  WallTime time;
  time.weekday = weekday;
  time.hour = hour;
  time.minute = minute;
  return time;
}

constexpr int kSunday = 0;
constexpr int kMonday = 1;
constexpr int kFriday = 5;
constexpr int kSaturday = 6;

Weekdays only(int day) {
  return Weekdays().set(static_cast<std::size_t>(day));
}

TEST(Schedule, IncludesItsBeginAndNotItsEnd) {
  const Schedule lunch{{12 * 60, 13 * 60}};
  EXPECT_FALSE(includes(lunch, timeOf(kMonday, 11, 59)));
  EXPECT_TRUE(includes(lunch, timeOf(kMonday, 12, 0)));
  EXPECT_TRUE(includes(lunch, timeOf(kMonday, 12, 59)));
  EXPECT_FALSE(includes(lunch, timeOf(kMonday, 13, 0)));
}

TEST(Schedule, HoursOverMidnightBelongToTheDayTheyBeginOn) {
  const Schedule night{{18 * 60, 8 * 60}, only(kFriday)};
  EXPECT_FALSE(includes(night, timeOf(kFriday, 7, 59)));
  EXPECT_FALSE(includes(night, timeOf(kFriday, 17, 59)));
  EXPECT_TRUE(includes(night, timeOf(kFriday, 18, 0)));
  EXPECT_TRUE(includes(night, timeOf(kSaturday, 7, 59)));
  EXPECT_FALSE(includes(night, timeOf(kSaturday, 8, 0)));
  EXPECT_FALSE(includes(night, timeOf(kSaturday, 18, 0)));
}

TEST(Schedule, TheDayBeforeSundayIsSaturday) {
  const Schedule night{{22 * 60, 2 * 60}, only(kSaturday)};
  EXPECT_TRUE(includes(night, timeOf(kSunday, 1, 0)));
  EXPECT_FALSE(includes(night, timeOf(kMonday, 1, 0)));
}

TEST(Schedule, DaysAloneAreWholeDays) {
  const Schedule sundays{{}, only(kSunday)};
  EXPECT_TRUE(includes(sundays, timeOf(kSunday, 0, 0)));
  EXPECT_TRUE(includes(sundays, timeOf(kSunday, 23, 59)));
  EXPECT_FALSE(includes(sundays, timeOf(kMonday, 0, 0)));
}

TEST(Schedule, ItsNextEdgeIsTheFirstBeginOrEnd) {
  const ScopedVariable zone("TZ", "UTC");
  const Schedule lunch{{12 * 60, 13 * 60}};
  EXPECT_EQ(nextEdge(lunch, {0}), Date{12 * 3600});
  EXPECT_EQ(nextEdge(lunch, {12 * 3600}), Date{13 * 3600});
  EXPECT_EQ(nextEdge(lunch, {12 * 3600 - 0.5}), Date{12 * 3600});
  EXPECT_EQ(nextEdge(lunch, {13 * 3600}), Date{36 * 3600});
  EXPECT_EQ(nextEdge(Schedule{}, {1}), Date{86400});
}

TEST(Schedule, ReadsHours) {
  EXPECT_EQ(parseHours("18:00-08:00"), (Hours{18 * 60, 8 * 60}));
  EXPECT_EQ(parseHours("9:05-17:30"), (Hours{545, 1050}));
  EXPECT_EQ(parseHours("00:00-24:00"), (Hours{0, 1440}));
  EXPECT_EQ(parseHours("22:00-24:00"), (Hours{1320, 1440}));
  for (const char* text :
       {"", "-", "18:00", "18:00-", "-08:00", "18-8", "18:00 - 08:00", "24:00-08:00", "24:01-08:00",
        "8:60-9:00", "8:0-9:00", "18:00-18:00", "018:00-08:00", "18:00-08:00-09:00", "a8:00-08:00",
        "+8:00-09:00", "99999999999:00-08:00"}) {
    EXPECT_EQ(parseHours(text), std::nullopt) << text;
  }
}

TEST(Schedule, ReadsDays) {
  EXPECT_EQ(parseWeekday("sun"), 0U);
  EXPECT_EQ(parseWeekday("sat"), 6U);
  for (const char* text : {"", "Sun", "sunday", "su"}) {
    EXPECT_EQ(parseWeekday(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace tessum
