#include "tools/demo_history.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "core/store/database.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

const SystemCalendar kCalendar;
const Date kAfternoon{1741100000.25};  // a Tuesday

std::vector<DemoDay> fortnight(Date now = kAfternoon, std::uint64_t seed = 1) {
  return demoHistory({.days = 14, .sessionsPerDay = 90, .seed = seed}, now, kCalendar);
}

bool sameHistory(const std::vector<DemoDay>& a, const std::vector<DemoDay>& b) {
  return std::equal(
      a.begin(), a.end(), b.begin(), b.end(), [](const DemoDay& left, const DemoDay& right) {
        return left.activities == right.activities && left.annotations == right.annotations;
      });
}

std::vector<Activity> allActivities(const std::vector<DemoDay>& history) {
  std::vector<Activity> all;
  for (const DemoDay& day : history) {
    all.insert(all.end(), day.activities.begin(), day.activities.end());
  }
  return all;
}

TEST(DemoHistory, IsTheSameForTheSameSeed) {
  EXPECT_TRUE(sameHistory(fortnight(), fortnight()));
  EXPECT_FALSE(sameHistory(fortnight(kAfternoon, 1), fortnight(kAfternoon, 2)));
}

TEST(DemoHistory, HasOneSessionAtATime) {
  const auto activities = allActivities(fortnight());
  for (std::size_t i = 1; i < activities.size(); ++i) {
    ASSERT_LE(activities[i - 1].endTime->secondsSince1970,
              activities[i].startTime.secondsSince1970);
  }
}

TEST(DemoHistory, EndsTodayWithAnOpenSessionAndAnOpenAnnotation) {
  const auto history = fortnight();
  EXPECT_EQ(history.size(), 15u);
  const DayRange today = kCalendar.dayOf(kAfternoon);
  for (const Activity& activity : history.back().activities) {
    EXPECT_GE(activity.startTime.secondsSince1970, today.start.secondsSince1970);
    EXPECT_LT(activity.startTime.secondsSince1970, kAfternoon.secondsSince1970);
  }
  EXPECT_FALSE(history.back().activities.back().endTime);
  EXPECT_FALSE(history.back().annotations.back().endedAt);
  const auto activities = allActivities(history);
  EXPECT_EQ(std::count_if(activities.begin(), activities.end(),
                          [](const Activity& activity) { return !activity.endTime; }),
            1);
}

TEST(DemoHistory, HasABusiestDayNightsAcrossMidnightAndTitlesAbsentOrEmpty) {
  const auto history = fortnight();
  const auto busier = [](const DemoDay& a, const DemoDay& b) {
    return a.activities.size() < b.activities.size();
  };
  EXPECT_EQ(std::max_element(history.begin(), history.end(), busier), history.end() - 4);

  const auto activities = allActivities(history);
  const auto crossesMidnight = [](const Activity& activity) {
    return activity.endTime &&
           kCalendar.dayOf(activity.startTime) != kCalendar.dayOf(*activity.endTime);
  };
  EXPECT_TRUE(std::any_of(activities.begin(), activities.end(), crossesMidnight));
  const auto hasTitle = [&](const std::optional<std::string>& title) {
    return std::any_of(activities.begin(), activities.end(),
                       [&](const Activity& activity) { return activity.title == title; });
  };
  EXPECT_TRUE(hasTitle(std::nullopt));
  EXPECT_TRUE(hasTitle(""));
}

TEST(DemoHistory, HasTheAskedNumberOfSessionsADayOnAverage) {
  const auto history =
      demoHistory({.days = 364, .sessionsPerDay = 300, .seed = 1}, kAfternoon, kCalendar);
  EXPECT_NEAR(static_cast<double>(allActivities(history).size()) / 365, 300, 6);
}

TEST(DemoHistory, IsWrittenAsItIs) {
  const TemporaryFolder folder;
  const auto history = fortnight();
  writeDemoHistory(folder.file("demo.db"), history, kCalendar);

  Database database(folder.file("demo.db"), kCalendar);
  auto expected = allActivities(history);
  std::reverse(expected.begin(), expected.end());
  auto stored = database.searchActivities("", -1);
  for (Activity& activity : stored) activity.id.reset();
  EXPECT_EQ(stored, expected);
  EXPECT_EQ(database.fetchAnnotations(kAfternoon, 100).size(), history.back().annotations.size());
}

TEST(DemoHistory, IsNeverMixedWithAnotherOne) {
  const TemporaryFolder folder;
  writeDemoHistory(folder.file("demo.db"), fortnight(), kCalendar);
  EXPECT_THROW(writeDemoHistory(folder.file("demo.db"), fortnight(), kCalendar),
               std::runtime_error);
}

TEST(DemoHistory, BeginsAtTheDaysBeginningWhenTheDayIsYoung) {
  const Date start = kCalendar.dayOf(kAfternoon).start;
  const auto history = fortnight(movedBy(start, 30));
  ASSERT_FALSE(history.back().activities.empty());
  EXPECT_GE(history.back().activities.front().startTime.secondsSince1970, start.secondsSince1970);
}

}  // namespace
}  // namespace tessum
