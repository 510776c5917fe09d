#include "tools/demo_history.h"

#include <sqlite3.h>
#include <ctime>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>
#include <random>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "core/store/database.h"
#include "tools/demo_words.h"

namespace tessum {
namespace {

constexpr double kMinute = 60;
constexpr double kHour = 60 * kMinute;

// Gives the same numbers on every system; the standard library's distributions do not.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  // From 0 up to, but excluding, `end`.
  std::size_t below(std::size_t end) { return static_cast<std::size_t>(engine_() % end); }

  // From `least` up to, but not including, `most`, in steps that keep a date's fraction short.
  double between(double least, double most) {
    constexpr std::size_t kSteps = 1 << 20;
    return least + (most - least) * static_cast<double>(below(kSteps)) / kSteps;
  }

  bool happens(std::size_t percent) { return below(100) < percent; }

  template <typename Items>
  const auto& oneOf(const Items& items) {
    return items[below(std::size(items))];
  }

 private:
  std::mt19937_64 engine_;
};

std::string withNumber(std::string_view pattern, Random& random) {
  std::string text(pattern);
  // "#general" is a name, not a placeholder.
  const auto at = text.find('#', 1);
  if (at != std::string::npos) text.replace(at, 1, std::to_string(2 + random.below(90)));
  return text;
}

const DemoApplication& anyApplication(Random& random) {
  std::size_t shares = 0;
  for (const DemoApplication& application : demoApplications()) shares += application.share;
  std::size_t drawn = random.below(shares);
  for (const DemoApplication& application : demoApplications()) {
    if (drawn < application.share) return application;
    drawn -= application.share;
  }
  return demoApplications().front();
}

std::optional<std::string> anyTitle(const DemoApplication& application, Random& random) {
  if (application.titles.empty() || random.happens(3)) return std::nullopt;
  return withNumber(random.oneOf(application.titles), random);
}

// How a person moves between applications: many short visits, some long ones, and often back to the
// previous one.
class Person {
 public:
  explicit Person(std::uint64_t seed) : random_(seed) {}

  Random& random() { return random_; }

  // Fills the time from `begin` to `end` with `count` sessions.
  void work(std::vector<Activity>& activities, Date begin, Date end, std::size_t count) {
    std::vector<double> weights(count);
    double sum = 0;
    for (double& weight : weights) {
      const double stay = random_.between(0, 1);
      weight = 0.02 + stay * stay * stay;
      sum += weight;
    }
    Date start = begin;
    for (const double weight : weights) {
      const double length = secondsBetween(begin, end) * weight / sum;
      const Date next = movedBy(start, length);
      activities.push_back(
          session(start, random_.happens(4) ? movedBy(start, 0.6 * length) : next));
      start = next;
    }
  }

 private:
  Activity session(Date start, Date end) {
    const DemoApplication* next = random_.happens(35) ? previous_ : &anyApplication(random_);
    previous_ = std::exchange(current_, next);
    Activity activity{.id = {},
                      .appName = std::string(next->name),
                      .bundleID = {},
                      .title = anyTitle(*next, random_),
                      .startTime = start,
                      .endTime = end};
    if (next->bundleID != nullptr) activity.bundleID = next->bundleID;
    return activity;
  }

  Random random_;
  const DemoApplication* current_ = &demoApplications()[0];
  const DemoApplication* previous_ = &demoApplications()[1];
};

bool isWeekend(Date dayStart) {
  const auto at = static_cast<std::time_t>(dayStart.secondsSince1970);
  std::tm local{};
  localtime_r(&at, &local);
  return local.tm_wday == 0 || local.tm_wday == 6;
}

// The number of sessions on the day `daysAgo` days ago. One day is the busiest.
std::size_t sessionCount(int sessionsPerDay, Date dayStart, int daysAgo, Random& random) {
  constexpr int kBusiestDay = 3;
  // Together, five workdays and a weekend keep the average.
  double factor = isWeekend(dayStart) ? 0.5 : 1.2;
  factor *= random.between(0.85, 1.15);
  if (daysAgo == kBusiestDay) factor = 1.9;
  return static_cast<std::size_t>(std::max(1.0, std::round(sessionsPerDay * factor)));
}

std::size_t partOf(std::size_t count, double part) {
  return static_cast<std::size_t>(std::round(static_cast<double>(count) * part));
}

std::vector<Activity> wholeDay(Date start, std::size_t count, Person& person) {
  Random& random = person.random();
  const auto at = [&](double hour, double spreadInMinutes) {
    return movedBy(start,
                   hour * kHour + random.between(-spreadInMinutes, spreadInMinutes) * kMinute);
  };
  const std::size_t evening = partOf(count, 0.1);
  const std::size_t morning = partOf(count, 0.4);
  std::vector<Activity> activities;
  // Drawn one by one, because compilers evaluate the arguments of a call in different orders.
  const Date lunch = at(12.4, 15);
  const Date arrival = at(8.7, 25);
  person.work(activities, arrival, lunch, morning);
  const Date departure = at(18.2, 40);
  const Date afternoon = at(13.3, 15);
  person.work(activities, afternoon, departure, count - morning - evening);
  // Some evenings end after midnight.
  const Date bedtime = random.happens(25) ? at(24.5, 20) : at(22.3, 40);
  const Date afterDinner = at(20.5, 30);
  person.work(activities, afterDinner, bedtime, evening);
  return activities;
}

// Today up to now, however early it is.
std::vector<Activity> unfinishedDay(Date start, Date now, std::size_t count, Person& person) {
  constexpr double kWorkingHours = 10 * kHour;
  const double usualBegin = start.secondsSince1970 + 8.5 * kHour;
  const double begin =
      std::max(start.secondsSince1970, std::min(usualBegin, now.secondsSince1970 - 1.5 * kHour));
  const double part = std::clamp((now.secondsSince1970 - begin) / kWorkingHours, 0.1, 1.0);
  std::vector<Activity> activities;
  person.work(activities, {begin}, now, std::max<std::size_t>(1, partOf(count, part)));
  activities.back().endTime.reset();
  return activities;
}

// Notes that cover the sessions' time, each until the next.
std::vector<Annotation> annotationsOver(const std::vector<Activity>& activities, Random& random) {
  const std::size_t count = std::min(activities.size(), 2 + random.below(4));
  std::vector<Annotation> annotations;
  for (std::size_t i = 0; i < count; ++i) {
    const Date start = movedBy(activities[i * activities.size() / count].startTime, 20);
    if (!annotations.empty()) annotations.back().endedAt = start;
    annotations.push_back({.id = {},
                           .text = std::string(random.oneOf(demoNotes())),
                           .startedAt = start,
                           .endedAt = {}});
  }
  annotations.back().endedAt = activities.back().endTime;
  return annotations;
}

// Sessions and annotations that begin after `now` have not happened yet.
template <typename Records, typename Start>
void dropFrom(Date now, Records& records, Start start) {
  while (!records.empty() && (records.back().*start).secondsSince1970 >= now.secondsSince1970) {
    records.pop_back();
  }
}

////////////////////////////////////////////////////////////////////////////////////////////////
// Writing. The statements are prepared once and everything is one transaction, so a million
// sessions take seconds.

struct Close {
  void operator()(sqlite3* db) const noexcept { sqlite3_close(db); }
};
struct Finalize {
  void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};
using Connection = std::unique_ptr<sqlite3, Close>;
using Prepared = std::unique_ptr<sqlite3_stmt, Finalize>;

void check(sqlite3* db, bool isGood) {
  if (!isGood) throw std::runtime_error(sqlite3_errmsg(db));
}

void run(sqlite3* db, const char* sql) {
  check(db, sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK);
}

Prepared prepare(sqlite3* db, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  check(db, sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) == SQLITE_OK);
  return Prepared(statement);
}

void bind(sqlite3_stmt* statement, int position, const std::string& text) {
  sqlite3_bind_text(statement, position, text.c_str(), -1, SQLITE_STATIC);
}

void bind(sqlite3_stmt* statement, int position, Date date) {
  sqlite3_bind_double(statement, position, date.secondsSince1970);
}

template <typename T>
void bind(sqlite3_stmt* statement, int position, const std::optional<T>& value) {
  if (value) {
    bind(statement, position, *value);
  } else {
    sqlite3_bind_null(statement, position);
  }
}

template <typename... Values>
void insertRow(sqlite3* db, sqlite3_stmt* statement, const Values&... values) {
  int position = 0;
  (bind(statement, ++position, values), ...);
  check(db, sqlite3_step(statement) == SQLITE_DONE);
  sqlite3_reset(statement);
}

bool holdsHistory(sqlite3* db) {
  const Prepared statement =
      prepare(db, "SELECT 1 FROM activities UNION ALL SELECT 1 FROM annotations LIMIT 1;");
  return sqlite3_step(statement.get()) == SQLITE_ROW;
}

}  // namespace

std::vector<DemoDay> demoHistory(const DemoOptions& options, Date now, const Calendar& calendar) {
  std::vector<Date> starts{calendar.dayOf(now).start};  // the newest first
  for (int day = 0; day < options.days; ++day) {
    starts.push_back(calendar.dayOf(calendar.dayBefore(starts.back())).start);
  }

  Person person(options.seed);
  std::vector<DemoDay> days;
  for (int daysAgo = options.days; daysAgo >= 0; --daysAgo) {
    const Date start = starts[static_cast<std::size_t>(daysAgo)];
    const std::size_t count = sessionCount(options.sessionsPerDay, start, daysAgo, person.random());
    DemoDay day;
    day.activities =
        daysAgo == 0 ? unfinishedDay(start, now, count, person) : wholeDay(start, count, person);
    dropFrom(now, day.activities, &Activity::startTime);
    if (!day.activities.empty()) day.annotations = annotationsOver(day.activities, person.random());
    dropFrom(now, day.annotations, &Annotation::startedAt);
    days.push_back(std::move(day));
  }
  return days;
}

void writeDemoHistory(const std::string& path, const std::vector<DemoDay>& history,
                      const Calendar& calendar) {
  { const Database creator(path, calendar); }  // creates the tables
  sqlite3* opened = nullptr;
  const int result = sqlite3_open(path.c_str(), &opened);
  const Connection connection(opened);
  sqlite3* const db = connection.get();
  check(db, result == SQLITE_OK);
  if (holdsHistory(db)) throw std::runtime_error(path + " holds a history already");

  run(db, "BEGIN;");
  const Prepared activities =
      prepare(db,
              "INSERT INTO activities (app_name, bundle_id, title, start_time, end_time) "
              "VALUES (?, ?, ?, ?, ?);");
  const Prepared annotations =
      prepare(db, "INSERT INTO annotations (text, started_at, ended_at) VALUES (?, ?, ?);");
  for (const DemoDay& day : history) {
    for (const Activity& activity : day.activities) {
      insertRow(db, activities.get(), activity.appName, activity.bundleID, activity.title,
                activity.startTime, activity.endTime);
    }
    for (const Annotation& annotation : day.annotations) {
      insertRow(db, annotations.get(), annotation.text, annotation.startedAt, annotation.endedAt);
    }
  }
  run(db, "COMMIT;");
}

}  // namespace tessum
