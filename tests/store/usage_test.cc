#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "core/store/database.h"
#include "tests/support/environment.h"
#include "tests/support/sql.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

class UsageTest : public testing::Test {
 protected:
  static constexpr double kNoon = 1741089600;  // 2025-03-04 12:00:00 UTC

  void add(const char* app, std::optional<std::string> bundle, double start,
           std::optional<double> end, std::optional<std::string> title) {
    database_.insert({.id = {},
                      .appName = app,
                      .bundleID = std::move(bundle),
                      .title = std::move(title),
                      .startTime = {start},
                      .endTime = end ? std::optional(Date{*end}) : std::nullopt});
  }

  const ScopedVariable zone_{"TZ", "UTC"};
  const TemporaryFolder folder_;
  const SystemCalendar calendar_{};
  Database database_{folder_.file("activities.db"), calendar_};
  Sql sql_{folder_.file("activities.db")};
};

TEST_F(UsageTest, AddsUpEachApplicationOfTheDayLargestFirst) {
  add("Mail", "org.mail", kNoon, kNoon + 30, "Inbox");
  add("Editor", "org.editor", kNoon + 30, kNoon + 100.5, "a.txt");
  add("Mail", "org.mail", kNoon + 200, kNoon + 210, "Draft");
  add("Editor", "org.editor", kNoon - 86400, kNoon, "yesterday");
  EXPECT_EQ(database_.appUsage({kNoon}), (std::vector<AppUsageSummary>{{.appName = "Editor",
                                                                        .bundleID = "org.editor",
                                                                        .totalDuration = 70.5,
                                                                        .sessionCount = 1,
                                                                        .latestTitle = "a.txt"},
                                                                       {.appName = "Mail",
                                                                        .bundleID = "org.mail",
                                                                        .totalDuration = 40,
                                                                        .sessionCount = 2,
                                                                        .latestTitle = "Draft"}}));
}

TEST_F(UsageTest, CountsAnOpenSessionUpToNowInWholeSeconds) {
  const SystemClock clock;
  // Far from a midnight that could pass during the test.
  const double start = calendar_.dayOf(clock.now()).start.secondsSince1970;
  add("Editor", {}, start, {}, {});
  const double before = std::floor(clock.now().secondsSince1970);
  const auto usage = database_.appUsage({start});
  const double after = std::floor(clock.now().secondsSince1970);
  ASSERT_EQ(usage.size(), 1u);
  EXPECT_EQ(usage[0].sessionCount, 1);
  EXPECT_GE(usage[0].totalDuration, before - start);
  EXPECT_LE(usage[0].totalDuration, after - start);
  EXPECT_EQ(usage[0].totalDuration, std::floor(usage[0].totalDuration));
}

TEST_F(UsageTest, KeepsAnApplicationWithAndWithoutABundleApart) {
  add("Editor", "org.editor", kNoon, kNoon + 20, "with");
  add("Editor", {}, kNoon + 50, kNoon + 60, "without");
  add("Editor", {}, kNoon + 70, kNoon + 75, {});
  EXPECT_EQ(database_.appUsage({kNoon}),
            (std::vector<AppUsageSummary>{{.appName = "Editor",
                                           .bundleID = "org.editor",
                                           .totalDuration = 20,
                                           .sessionCount = 1,
                                           .latestTitle = "with"},
                                          {.appName = "Editor",
                                           .bundleID = {},
                                           .totalDuration = 15,
                                           .sessionCount = 2,
                                           .latestTitle = "without"}}));
}

TEST_F(UsageTest, LatestTitleSkipsEmptyOnesAndOtherDays) {
  add("Editor", {}, kNoon - 86400, kNoon - 86300, "yesterday");
  add("Editor", {}, kNoon, kNoon + 1, "older");
  add("Editor", {}, kNoon + 2, kNoon + 3, "");
  add("Editor", {}, kNoon + 4, kNoon + 5, {});
  add("Untitled", {}, kNoon + 6, kNoon + 6, "");
  const auto usage = database_.appUsage({kNoon});
  ASSERT_EQ(usage.size(), 2u);
  EXPECT_EQ(usage[0].latestTitle, "older");
  EXPECT_EQ(usage[1].latestTitle, std::nullopt);
}

TEST_F(UsageTest, LeavesNothingInTheFileNorOnTheConnection) {
  add("Editor", {}, kNoon, kNoon + 1, {});
  const auto before = readFile(database_.path());
  EXPECT_EQ(database_.appUsage({kNoon}).size(), 1u);
  EXPECT_EQ(readFile(database_.path()), before);
  // The table can be written again: the view that hid it is gone.
  add("Editor", {}, kNoon + 1, kNoon + 2, {});
  EXPECT_EQ(database_.appUsage({kNoon})[0].sessionCount, 2);
}

TEST_F(UsageTest, WorksWithoutTheIndexThatMakesItFast) {
  add("Editor", {}, kNoon, kNoon + 1, "title");
  const auto usual = database_.appUsage({kNoon});
  sql_.run("DROP INDEX idx_activities_start");
  EXPECT_EQ(database_.appUsage({kNoon}), usual);
}

// The expected answer, from the statement without the view.
std::multiset<std::string> plainUsage(Sql& sql, double dayStart) {
  const std::string range =
      ">= " + std::to_string(dayStart) + " AND %s < " + std::to_string(dayStart + 86400);
  const auto within = [&](const std::string& column) {
    std::string text = column + " " + range;
    return text.replace(text.find("%s"), 2, column);
  };
  const auto rows = sql.rows(
      "SELECT a.app_name, a.bundle_id, SUM(COALESCE(a.end_time, strftime('%s','now')) - "
      "a.start_time) AS total_secs, COUNT(*), (SELECT group_concat(title, '/') FROM (SELECT "
      "DISTINCT "
      "title FROM activities a2 WHERE a2.app_name = a.app_name AND a2.bundle_id IS a.bundle_id "
      "AND " +
      within("a2.start_time") +
      " AND a2.title IS NOT NULL AND a2.title != '' AND a2.start_time = (SELECT max(start_time) "
      "FROM "
      "activities a3 WHERE a3.app_name = a.app_name AND a3.bundle_id IS a.bundle_id AND " +
      within("a3.start_time") +
      " AND a3.title IS NOT NULL AND a3.title != ''))) FROM activities a WHERE " +
      within("a.start_time") + " GROUP BY a.app_name, a.bundle_id ORDER BY total_secs DESC");
  return {rows.begin(), rows.end()};
}

// There are so few names, bundles, titles and times to draw from that ties and NULLs are common.
// When several titles are the newest at the same moment, any of them is right.
TEST_F(UsageTest, GivesWhatThePlainStatementGives) {
  std::mt19937 random(20250304);
  const auto below = [&](int n) { return std::uniform_int_distribution<>(0, n - 1)(random); };
  const char* const apps[] = {"A", "B", "C"};
  for (int round = 0; round < 40; ++round) {
    sql_.run("DELETE FROM activities");
    const int count = below(60);
    for (int i = 0; i < count; ++i) {
      const double start = kNoon + (below(5) - 2) * 43200 + below(4);
      add(apps[below(3)], below(2) != 0 ? std::optional<std::string>("id") : std::nullopt, start,
          start + below(50),
          below(4) == 0   ? std::optional<std::string>()
          : below(4) == 0 ? ""
                          : "t" + std::to_string(below(3)));
    }
    const double dayStart = kNoon - 43200;
    const auto expected = plainUsage(sql_, dayStart);
    const auto actual = database_.appUsage({kNoon});
    ASSERT_EQ(actual.size(), expected.size());
    double last = HUGE_VAL;
    for (const AppUsageSummary& summary : actual) {
      EXPECT_LE(summary.totalDuration, last);
      last = summary.totalDuration;
      const std::string head = summary.appName + "|" + summary.bundleID.value_or("NULL") + "|" +
                               std::to_string(static_cast<long>(summary.totalDuration)) + ".0|" +
                               std::to_string(summary.sessionCount) + "|";
      const auto match =
          std::find_if(expected.begin(), expected.end(), [&](const std::string& row) {
            const auto titles = row.substr(row.rfind('|'));
            return row.starts_with(head) &&
                   (summary.latestTitle ? titles.find(*summary.latestTitle) != std::string::npos
                                        : titles == "|NULL");
          });
      EXPECT_NE(match, expected.end()) << head << summary.latestTitle.value_or("NULL");
    }
  }
}

}  // namespace
}  // namespace tessum
