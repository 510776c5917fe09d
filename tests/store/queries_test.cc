#include <gtest/gtest.h>

#include <stdexcept>

#include "core/store/database.h"
#include "tests/support/environment.h"
#include "tests/support/sql.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

constexpr double kHour = 3600;

class QueriesTest : public testing::Test {
 protected:
  static constexpr double kNoon = 1741089600;  // 2025-03-04 12:00:00 UTC

  std::int64_t add(const char* app, double start, std::optional<std::string> title = {}) {
    return database_.insert({.id = 99,
                             .appName = app,
                             .bundleID = {},
                             .title = std::move(title),
                             .startTime = {start},
                             .endTime = Date{start + 60}});
  }

  std::vector<std::string> appsOf(const std::vector<Activity>& activities) {
    std::vector<std::string> apps;
    for (const Activity& activity : activities) apps.push_back(activity.appName);
    return apps;
  }

  const ScopedVariable zone_{"TZ", "UTC"};
  const TemporaryFolder folder_;
  const SystemCalendar calendar_{};
  Database database_{folder_.file("activities.db"), calendar_};
  Sql sql_{folder_.file("activities.db")};
};

using Apps = std::vector<std::string>;

TEST_F(QueriesTest, InsertStoresEveryFieldButTheID) {
  const Activity activity{.id = 99,
                          .appName = "Editor",
                          .bundleID = "org.editor",
                          .title = "notes",
                          .startTime = {kNoon + 0.25},
                          .endTime = Date{kNoon + 1.5}};
  const auto id = database_.insert(activity);
  EXPECT_EQ(id, 1);
  Activity stored = activity;
  stored.id = id;
  EXPECT_EQ(database_.fetchActivities({kNoon}, 10), std::vector{stored});
  EXPECT_EQ(sql_.row("SELECT abs(created_at - strftime('%s','now')) < 60 FROM activities"), "1");
}

TEST_F(QueriesTest, InsertWritesNullForWhatIsAbsent) {
  database_.insert(
      {.id = {}, .appName = "A", .bundleID = {}, .title = {}, .startTime = {kNoon}, .endTime = {}});
  EXPECT_EQ(sql_.row("SELECT bundle_id, title, end_time FROM activities"), "NULL|NULL|NULL");
}

TEST_F(QueriesTest, UpdatesTouchTheirOwnColumnAlone) {
  const auto id = add("A", kNoon, "old");
  const auto other = add("B", kNoon, "other");
  database_.updateTitle(id, "new");
  database_.updateEndTime(id, {kNoon + 5.5});
  EXPECT_EQ(sql_.row("SELECT title, end_time FROM activities WHERE id = " + std::to_string(id)),
            "new|1741089605.5");
  EXPECT_EQ(sql_.row("SELECT title FROM activities WHERE id = " + std::to_string(other)), "other");
}

TEST_F(QueriesTest, UpdatesOfAnUnknownIDSucceedAndChangeNothing) {
  add("A", kNoon, "title");
  const auto before = sql_.rows("SELECT * FROM activities");
  database_.updateEndTime(12345, {kNoon});
  database_.updateTitle(12345, "x");
  EXPECT_EQ(sql_.rows("SELECT * FROM activities"), before);
}

TEST_F(QueriesTest, FetchActivitiesGivesTheDayNewestFirst) {
  add("yesterday", kNoon - 12 * kHour - 1);
  add("first", kNoon - 12 * kHour);
  add("noon", kNoon);
  add("last", kNoon + 12 * kHour - 1);
  add("tomorrow", kNoon + 12 * kHour);
  EXPECT_EQ(appsOf(database_.fetchActivities({kNoon + 100}, 100)), (Apps{"last", "noon", "first"}));
}

TEST_F(QueriesTest, AVisitorGetsWhatAListWouldHold) {
  for (int i = 0; i < 5; ++i)
    add("A", kNoon + i, i % 2 == 0 ? std::optional("even") : std::nullopt);
  std::vector<Activity> visited;
  const ActivityVisitor keep = [&](const Activity& activity) { visited.push_back(activity); };
  database_.fetchActivities({kNoon}, 3, keep);
  EXPECT_EQ(visited, database_.fetchActivities({kNoon}, 3));
  visited.clear();
  database_.searchActivities("even", 2, keep);
  EXPECT_EQ(visited, database_.searchActivities("even", 2));
}

TEST_F(QueriesTest, AVisitorThatThrowsEndsTheReadAndReleasesTheFile) {
  add("A", kNoon);
  add("B", kNoon + 1);
  EXPECT_THROW(database_.fetchActivities(
                   {kNoon}, 10, [](const Activity&) { throw std::runtime_error("enough"); }),
               std::runtime_error);
  EXPECT_EQ(sql_.row("UPDATE activities SET title = 'free' RETURNING title"), "free");
}

TEST_F(QueriesTest, ASessionAcrossMidnightBelongsWhollyToTheDayItBeganOn) {
  const double midnight = kNoon + 12 * kHour;
  database_.insert({.id = {},
                    .appName = "Night",
                    .bundleID = {},
                    .title = {},
                    .startTime = {midnight - 300},
                    .endTime = Date{midnight + 1200}});
  EXPECT_EQ(appsOf(database_.fetchActivities({kNoon}, 10)), Apps{"Night"});
  EXPECT_TRUE(database_.fetchActivities({midnight}, 10).empty());
  ASSERT_EQ(database_.appUsage({kNoon}).size(), 1u);
  EXPECT_EQ(database_.appUsage({kNoon})[0].totalDuration, 1500);
  EXPECT_TRUE(database_.appUsage({midnight}).empty());
}

TEST_F(QueriesTest, LimitsAreThoseOfTheStatement) {
  for (int i = 0; i < 5; ++i) add("A", kNoon + i);
  EXPECT_EQ(database_.fetchActivities({kNoon}, 2).size(), 2u);
  EXPECT_EQ(database_.fetchActivities({kNoon}, 0).size(), 0u);
  EXPECT_EQ(database_.fetchActivities({kNoon}, -1).size(), 5u);
  EXPECT_EQ(database_.searchActivities("", 3).size(), 3u);
  EXPECT_EQ(database_.searchActivities("", -7).size(), 5u);
}

TEST_F(QueriesTest, DaysFollowTheZonesClock) {
  const ScopedVariable zone("TZ", "Europe/Berlin");
  // On 30 March 2025 the day lasts from 23:00 UTC to 22:00 UTC.
  const double start = 1743289200;
  add("before", start - 1);
  add("begins", start);
  add("ends", start + 23 * kHour - 1);
  add("after", start + 23 * kHour);
  EXPECT_EQ(appsOf(database_.fetchActivities({start + 60}, 10)), (Apps{"ends", "begins"}));
}

TEST_F(QueriesTest, SearchLooksAtNamesAndTitlesOfAllDaysNewestFirst) {
  add("Browser", kNoon - 500 * 24 * kHour, "Pull request 42");
  add("Mail", kNoon, "Inbox");
  add("Terminal", kNoon + 1, "pull origin");
  add("Puller", kNoon + 2);
  EXPECT_EQ(appsOf(database_.searchActivities("pull", 50)),
            (Apps{"Puller", "Terminal", "Browser"}));
  EXPECT_EQ(appsOf(database_.searchActivities("MAIL", 50)), Apps{"Mail"});
  EXPECT_TRUE(database_.searchActivities("nowhere", 50).empty());
}

TEST_F(QueriesTest, SearchTakesWildcardsAsSQLiteDoes) {
  add("A", kNoon, "xabcx");
  add("B", kNoon + 1, "a_c");
  add("C", kNoon + 2);
  EXPECT_EQ(appsOf(database_.searchActivities("a_c", 50)), (Apps{"B", "A"}));
  EXPECT_EQ(database_.searchActivities("%", 50).size(), 3u);
  EXPECT_EQ(database_.searchActivities("", 50).size(), 3u);
}

TEST_F(QueriesTest, SearchIgnoresCaseForAsciiAlone) {
  add("A", kNoon, "ÉCOLE");
  EXPECT_TRUE(database_.searchActivities("école", 50).empty());
  EXPECT_EQ(database_.searchActivities("cole", 50).size(), 1u);
}

TEST_F(QueriesTest, InsertAnnotationEndsTheOpenOneWhereItStarts) {
  const auto first =
      database_.insertAnnotation({.id = {}, .text = "one", .startedAt = {kNoon}, .endedAt = {}});
  const auto second = database_.insertAnnotation(
      {.id = 1, .text = "two", .startedAt = {kNoon + 10.5}, .endedAt = {}});
  EXPECT_GT(second, first);
  EXPECT_EQ(sql_.rows("SELECT text, started_at, ended_at FROM annotations ORDER BY id"),
            (std::vector<std::string>{"one|1741089600.0|1741089610.5", "two|1741089610.5|NULL"}));
}

TEST_F(QueriesTest, InsertAnnotationKeepsAnEndOfItsOwn) {
  database_.insertAnnotation(
      {.id = {}, .text = "done", .startedAt = {kNoon}, .endedAt = Date{kNoon + 1}});
  EXPECT_FALSE(database_.currentAnnotation().has_value());
}

TEST_F(QueriesTest, AFailedInsertLeavesTheOldAnnotationEnded) {
  database_.insertAnnotation({.id = {}, .text = "one", .startedAt = {kNoon}, .endedAt = {}});
  sql_.run(
      "CREATE TRIGGER refuse BEFORE INSERT ON annotations BEGIN SELECT RAISE(ABORT, 'no'); END");
  EXPECT_THROW(database_.insertAnnotation(
                   {.id = {}, .text = "two", .startedAt = {kNoon + 9}, .endedAt = {}}),
               DatabaseError);
  EXPECT_EQ(sql_.rows("SELECT text, ended_at FROM annotations"),
            std::vector<std::string>{"one|1741089609.0"});
}

TEST_F(QueriesTest, AFailureToEndTheOldAnnotationInsertsNothing) {
  database_.insertAnnotation({.id = {}, .text = "one", .startedAt = {kNoon}, .endedAt = {}});
  sql_.run(
      "CREATE TRIGGER refuse BEFORE UPDATE ON annotations BEGIN SELECT RAISE(ABORT, 'no'); END");
  EXPECT_THROW(database_.insertAnnotation(
                   {.id = {}, .text = "two", .startedAt = {kNoon + 9}, .endedAt = {}}),
               DatabaseError);
  EXPECT_EQ(sql_.row("SELECT count(*) FROM annotations"), "1");
}

TEST_F(QueriesTest, EndCurrentAnnotationEndsEveryOpenOne) {
  sql_.run(
      "INSERT INTO annotations (text, started_at) VALUES ('a', 1), ('b', 2);"
      "INSERT INTO annotations (text, started_at, ended_at) VALUES ('c', 3, 4);");
  database_.endCurrentAnnotation({kNoon});
  EXPECT_EQ(sql_.rows("SELECT ended_at FROM annotations ORDER BY id"),
            (std::vector<std::string>{"1741089600.0", "1741089600.0", "4.0"}));
  database_.endCurrentAnnotation({kNoon + 1});
  EXPECT_EQ(sql_.row("SELECT max(ended_at) FROM annotations"), "1741089600.0");
}

TEST_F(QueriesTest, FetchAnnotationsGivesThoseThatOverlapTheDay) {
  const double dayStart = kNoon - 12 * kHour;
  const double dayEnd = kNoon + 12 * kHour;
  const auto add = [&](const char* text, double start, std::optional<double> end) {
    sql_.run("INSERT INTO annotations (text, started_at, ended_at) VALUES ('" + std::string(text) +
             "', " + std::to_string(start) + ", " + (end ? std::to_string(*end) : "NULL") + ")");
  };
  add("open since yesterday", dayStart - 100, {});
  add("ended where the day starts", dayStart - 50, dayStart);
  add("reaches into the day", dayStart - 40, dayStart + 1);
  add("inside", kNoon, kNoon + 1);
  add("begins at the end of the day", dayEnd, {});
  std::vector<std::string> texts;
  for (const auto& annotation : database_.fetchAnnotations({kNoon}, 100)) {
    texts.push_back(annotation.text);
  }
  EXPECT_EQ(texts,
            (std::vector<std::string>{"inside", "reaches into the day", "open since yesterday"}));
  EXPECT_EQ(database_.fetchAnnotations({kNoon}, 1).size(), 1u);
}

TEST_F(QueriesTest, CurrentAnnotationIsTheNewestOpenOne) {
  EXPECT_FALSE(database_.currentAnnotation().has_value());
  sql_.run(
      "INSERT INTO annotations (text, started_at, ended_at) "
      "VALUES ('older', 5, NULL), ('newer', 6.5, NULL), ('ended', 7, 8)");
  EXPECT_EQ(database_.currentAnnotation(),
            (Annotation{.id = 2, .text = "newer", .startedAt = {6.5}, .endedAt = {}}));
}

}  // namespace
}  // namespace tessum
