// Usage agrees with sums that are made another way: SQLite writes down each minute of a random
// history with what the wall showed, and counts.

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <utility>

#include "core/store/database.h"
#include "desktop/periods/calendar_dates.h"
#include "desktop/usage/usage.h"
#include "tests/desktop/user.h"
#include "tests/support/environment.h"
#include "tests/support/sql.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

const SystemCalendar kCalendar;

// Each zone sets its clocks forward and back in these days, but for two that never do.
constexpr CalendarDate kFirst{2018, 10, 1};
constexpr int kDays = 195;
constexpr const char* kZones[] = {"UTC",          "Europe/Berlin",       "America/New_York",
                                  "Asia/Kolkata", "Australia/Lord_Howe", "America/Sao_Paulo"};

constexpr int kSessions = 400;
constexpr int kNotes = 80;
constexpr int kMostMinutes = 300;

class Chance {
 public:
  explicit Chance(unsigned seed) : engine_(seed) {}

  // From 0 up to, but not including, `end`.
  int below(int end) { return std::uniform_int_distribution(0, end - 1)(engine_); }

 private:
  std::mt19937 engine_;
};

const char* kMinutes = R"(
DROP TABLE IF EXISTS minutes;
CREATE TEMP TABLE minutes AS
WITH RECURSIVE ticks(id, app_name, title, at, until) AS (
  SELECT id, app_name, title, start_time, end_time FROM activities
  UNION ALL SELECT id, app_name, title, at + 60, until FROM ticks WHERE at + 60 < until)
SELECT id, app_name AS app, title,
  CASE WHEN app_name = 'A' THEN 'First' WHEN title IN ('T0', 'T1') THEN 'Second' END AS category,
  (SELECT text FROM annotations WHERE started_at <= at AND ended_at > at
   ORDER BY started_at DESC, annotations.id DESC LIMIT 1) AS note,
  date(at, 'unixepoch', 'localtime', SHIFT) AS day,
  strftime('%w', at, 'unixepoch', 'localtime', SHIFT) AS weekday,
  strftime('%H:00', at, 'unixepoch', 'localtime') AS hour
FROM ticks;
UPDATE minutes SET weekday = CASE weekday WHEN '0' THEN 'Sunday' WHEN '1' THEN 'Monday'
  WHEN '2' THEN 'Tuesday' WHEN '3' THEN 'Wednesday' WHEN '4' THEN 'Thursday' WHEN '5' THEN 'Friday'
  ELSE 'Saturday' END;
CREATE INDEX minutes_day ON minutes(day);)";

// The first and second name, the seconds and the sessions of each group.
using Groups = std::map<std::string, std::string>;

std::string cellText(const Total& total) {
  return std::to_string(std::llround(total.seconds)) + " in " + std::to_string(total.sessions);
}

Groups groupsOf(const Usage& usage) {
  Groups groups;
  for (const UsageGroup& group : usage.groups) {
    const std::string name = group.name.value_or("NULL");
    groups[name] = cellText(group.total);
    for (const UsageGroup& part : group.groups) {
      groups[name + "|" + part.name.value_or("NULL")] = cellText(part.total);
    }
  }
  return groups;
}

class UsageSums : public testing::TestWithParam<const char*> {
 protected:
  UsageSums() : zone_("TZ", GetParam()) {
    const Database made(path_, kCalendar);
    Sql sql(path_);
    const double start = kCalendar.startOf(kFirst)->secondsSince1970;
    const auto minuteText = [&](int minute) { return std::to_string(start + minute * 60.0); };
    std::string script = "BEGIN;";
    for (int i = 0; i < kSessions; ++i) {
      const int begin = chance_.below(kDays * 24 * 60);
      const int title = chance_.below(6);
      script += "INSERT INTO activities (app_name, title, start_time, end_time) VALUES ('" +
                std::string(1, static_cast<char>('A' + chance_.below(5))) + "', " +
                (title == 5 ? "NULL" : "'T" + std::to_string(title) + "'") + ", " +
                minuteText(begin) + ", " + minuteText(begin + 1 + chance_.below(kMostMinutes)) +
                ");";
    }
    for (int i = 0; i < kNotes; ++i) {
      const int begin = chance_.below(kDays * 24 * 60);
      script += "INSERT INTO annotations (text, started_at, ended_at) VALUES ('N" +
                std::to_string(chance_.below(9)) + "', " + minuteText(begin) + ", " +
                minuteText(begin + chance_.below(3 * 24 * 60)) + ");";
    }
    sql.run(script + "COMMIT;");
    rules_.categories = {{"First", {Pattern("^A$"), {}}, {}, 1},
                         {"Second", {{}, Pattern("T[01]")}, {}, 2}};
  }

  Period randomPeriod() {
    const int first = chance_.below(kDays);
    const int length = chance_.below(4) == 0 ? chance_.below(kDays) : chance_.below(8);
    return {daysAfter(kFirst, first), daysAfter(kFirst, first + length)};
  }

  std::vector<Grouping> randomGroupings() {
    const auto first = static_cast<Grouping>(chance_.below(7));
    const auto second = static_cast<Grouping>(chance_.below(7));
    if (second == first) return {first};
    return {first, second};
  }

  // The same groups from the minutes.
  static Groups countedGroups(Sql& minutes, const Period& period, const std::vector<Grouping>& by) {
    Groups groups;
    std::string columns;
    for (const Grouping grouping : by) {
      columns += (columns.empty() ? "" : ", ") + std::string(groupingName(grouping));
      const std::string names = columns.find(',') == std::string::npos
                                    ? "IFNULL(" + columns + ", 'NULL')"
                                    : "IFNULL(" + std::string(groupingName(by[0])) +
                                          ", 'NULL') || '|' || IFNULL(" +
                                          std::string(groupingName(by[1])) + ", 'NULL')";
      for (const std::string& row :
           minutes.rows("SELECT " + names +
                        " || '=' || (COUNT(*) * 60) || ' in ' || "
                        "COUNT(DISTINCT id) FROM minutes WHERE day BETWEEN '" +
                        dateText(period.first) + "' AND '" + dateText(period.last) + "' GROUP BY " +
                        columns)) {
        groups[row.substr(0, row.find('='))] = row.substr(row.find('=') + 1);
      }
    }
    return groups;
  }

  void compare(int startMinute, int rounds) {
    Sql minutes(path_);
    std::string script = kMinutes;
    const std::string shift = "'-" + std::to_string(startMinute) + " minutes'";
    for (auto at = script.find("SHIFT"); at != std::string::npos; at = script.find("SHIFT")) {
      script.replace(at, 5, shift);
    }
    minutes.run(script);
    History history(path_, History::Access::read);
    const ReportDays days(kCalendar, startMinute);
    const Date now = days.startOf(daysAfter(kFirst, 2 * kDays));
    for (int i = 0; i < rounds; ++i) {
      const Period period = randomPeriod();
      const auto by = randomGroupings();
      const Usage usage =
          readUsage(history, days, rules_, {.period = period, .by = by, .filter = {}}, now);
      const std::string name = dateText(period.first) + ".." + dateText(period.last) + " by " +
                               std::string(groupingName(by.front())) + "," +
                               std::string(groupingName(by.back()));
      ASSERT_EQ(groupsOf(usage), countedGroups(minutes, period, by)) << name;
      for (const UsageGroup& day : usage.days) {
        const Groups counted = countedGroups(
            minutes, {daysAfter(period.first, day.number), daysAfter(period.first, day.number)},
            {Grouping::day});
        ASSERT_EQ(counted.empty() ? cellText({}) : counted.begin()->second, cellText(day.total))
            << name << " on " << *day.name;
      }
    }
  }

  ScopedVariable zone_;
  TemporaryFolder folder_;
  const std::string path_ = folder_.file("activities.db");
  Chance chance_{20250304};
  Rules rules_;
};

// All zones together take TESSUM_RANDOM_PERIODS.
constexpr int kRounds = TESSUM_RANDOM_PERIODS / 12 + 1;

TEST_P(UsageSums, AgreeWithTheMinutesOfDaysFromMidnight) {
  compare(0, kRounds);
}

TEST_P(UsageSums, AgreeWithTheMinutesOfDaysFromFour) {
  compare(4 * 60, kRounds);
}

INSTANTIATE_TEST_SUITE_P(Zones, UsageSums, testing::ValuesIn(kZones),
                         [](const auto& tested) { return std::to_string(tested.index); });

}  // namespace
}  // namespace tessum
