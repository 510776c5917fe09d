#include "core/store/database.h"

#include <sqlite3.h>

#include <utility>

#include "core/platform/private_files.h"
#include "core/store/statement.h"

namespace tessum {
namespace {

// SQLite's name for a database without a file; so is the empty one.
constexpr char kInMemory[] = ":memory:";

constexpr char kSchema[] = R"(CREATE TABLE IF NOT EXISTS activities (
    id         INTEGER PRIMARY KEY AUTOINCREMENT,
    app_name   TEXT    NOT NULL,
    bundle_id  TEXT,
    title      TEXT,
    start_time REAL    NOT NULL,
    end_time   REAL,
    created_at REAL    NOT NULL DEFAULT (strftime('%s','now'))
);
CREATE INDEX IF NOT EXISTS idx_activities_start ON activities(start_time);
CREATE INDEX IF NOT EXISTS idx_activities_app   ON activities(app_name);

CREATE TABLE IF NOT EXISTS annotations (
    id         INTEGER PRIMARY KEY AUTOINCREMENT,
    text       TEXT    NOT NULL,
    started_at REAL    NOT NULL,
    ended_at   REAL,
    created_at REAL    NOT NULL DEFAULT (strftime('%s','now'))
);
CREATE INDEX IF NOT EXISTS idx_annotations_started ON annotations(started_at);)";

// Columns: id, app_name, bundle_id, title, start_time, end_time.
void readActivities(Statement& statement, const ActivityVisitor& visit) {
  Activity activity;  // one for all rows, which reuse the memory of its texts
  while (statement.nextRow()) {
    activity.id = statement.rowID(0);
    statement.readText(1, activity.appName);
    statement.readText(2, activity.bundleID);
    statement.readText(3, activity.title);
    activity.startTime = statement.date(4);
    activity.endTime = statement.optionalDate(5);
    visit(activity);
  }
}

}  // namespace

void Database::Close::operator()(sqlite3* db) const noexcept {
  sqlite3_close(db);
}

Database::Database(std::string path, const Calendar& calendar)
    : path_(std::move(path)), calendar_(calendar) {
  open();
  exec(kSchema);
}

Database::~Database() = default;

void Database::open() {
  // SQLite would give the file the rights that the umask leaves, and its journal those of the file.
  if (!path_.empty() && path_ != kInMemory) createPrivateFile(path_);
  sqlite3* db = nullptr;
  const int result = sqlite3_open(path_.c_str(), &db);
  db_.reset(db);
  if (result != SQLITE_OK) {
    throw DatabaseError::openFailed(result, db == nullptr ? "Unknown error" : sqlite3_errmsg(db));
  }
}

void Database::exec(const char* script) {
  struct Free {
    void operator()(char* message) const noexcept { sqlite3_free(message); }
  };
  char* message = nullptr;
  const int result = sqlite3_exec(db_.get(), script, nullptr, nullptr, &message);
  const std::unique_ptr<char, Free> owned(message);
  if (result != SQLITE_OK) {
    throw DatabaseError::executionFailed(result, message == nullptr ? "Unknown error" : message);
  }
}

constexpr char kInsertActivity[] =
    R"(INSERT INTO activities (app_name, bundle_id, title, start_time, end_time)
VALUES (?, ?, ?, ?, ?);)";

std::int64_t Database::insert(const Activity& activity) {
  Statement(db_.get(), kInsertActivity)
      .bind(activity.appName)
      .bind(activity.bundleID)
      .bind(activity.title)
      .bind(activity.startTime)
      .bind(activity.endTime)
      .execute();
  return sqlite3_last_insert_rowid(db_.get());
}

constexpr char kSetEndTime[] = "UPDATE activities SET end_time = ? WHERE id = ?;";

void Database::updateEndTime(std::int64_t id, Date end) {
  Statement(db_.get(), kSetEndTime).bind(end).bindRowID(id).execute();
}

constexpr char kSetTitle[] = "UPDATE activities SET title = ? WHERE id = ?;";

void Database::updateTitle(std::int64_t id, const std::string& title) {
  Statement(db_.get(), kSetTitle).bind(title).bindRowID(id).execute();
}

constexpr char kActivitiesOfDay[] =
    R"(SELECT id, app_name, bundle_id, title, start_time, end_time
FROM activities
WHERE start_time >= ? AND start_time < ?
ORDER BY start_time DESC
LIMIT ?;)";

std::vector<Activity> Database::fetchActivities(Date day, std::int64_t limit) {
  std::vector<Activity> activities;
  fetchActivities(day, limit, [&](const Activity& next) { activities.push_back(next); });
  return activities;
}

void Database::fetchActivities(Date day, std::int64_t limit, const ActivityVisitor& visit) {
  const DayRange range = calendar_.dayOf(day);
  Statement statement(db_.get(), kActivitiesOfDay);
  statement.bind(range.start).bind(range.end).bindLimit(limit);
  readActivities(statement, visit);
}

constexpr char kSearch[] =
    R"(SELECT id, app_name, bundle_id, title, start_time, end_time
FROM activities
WHERE app_name LIKE ? OR title LIKE ?
ORDER BY start_time DESC
LIMIT ?;)";

std::vector<Activity> Database::searchActivities(std::string_view query, std::int64_t limit) {
  std::vector<Activity> activities;
  searchActivities(query, limit, [&](const Activity& next) { activities.push_back(next); });
  return activities;
}

void Database::searchActivities(std::string_view query, std::int64_t limit,
                                const ActivityVisitor& visit) {
  std::string pattern = "%";
  pattern += query;
  pattern += '%';
  Statement statement(db_.get(), kSearch);
  statement.bind(pattern).bind(pattern).bindLimit(limit);
  readActivities(statement, visit);
}

constexpr char kUsageSummary[] =
    R"(SELECT a.app_name, a.bundle_id,
       SUM(COALESCE(a.end_time, strftime('%s','now')) - a.start_time) AS total_secs,
       COUNT(*) AS sessions,
       (SELECT title FROM activities a2
        WHERE a2.app_name = a.app_name
          AND (a2.bundle_id = a.bundle_id OR (a2.bundle_id IS NULL AND a.bundle_id IS NULL))
          AND a2.start_time >= ? AND a2.start_time < ?
          AND a2.title IS NOT NULL AND a2.title != ''
        ORDER BY a2.start_time DESC LIMIT 1) AS latest_title
FROM activities a
WHERE a.start_time >= ? AND a.start_time < ?
GROUP BY a.app_name, a.bundle_id
ORDER BY total_secs DESC;)";

// While it lives, the connection reads `activities` through the index on start_time.
//
// On its own SQLite looks for the newest title of an application among all sessions that the
// application ever had (the index on app_name), once for each application of the day: the summary
// would slow down as the history grows. The text of the statement is fixed, but a temporary view
// with the table's name, which only this connection sees, makes the same text read only the day's
// range. If the view does not work, the statement gives the same answer more slowly.
class Database::DayRangeView {
 public:
  explicit DayRangeView(sqlite3* db) : db_(db) {
    if (!run(kMake) || !run(kTry)) drop();
  }
  ~DayRangeView() { drop(); }
  DayRangeView(const DayRangeView&) = delete;
  DayRangeView& operator=(const DayRangeView&) = delete;

 private:
  static constexpr char kMake[] =
      "CREATE TEMP VIEW activities AS "
      "SELECT * FROM main.activities INDEXED BY idx_activities_start;";
  // SQLite does not check a view before it is used.
  static constexpr char kTry[] = "SELECT 1 FROM temp.activities LIMIT 0;";
  static constexpr char kDrop[] = "DROP VIEW IF EXISTS temp.activities;";

  bool run(const char* sql) {
    return sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
  }
  void drop() { run(kDrop); }

  sqlite3* db_;
};

std::vector<AppUsageSummary> Database::appUsage(Date day) {
  const DayRange range = calendar_.dayOf(day);
  const DayRangeView view(db_.get());
  Statement statement(db_.get(), kUsageSummary);
  statement.bind(range.start).bind(range.end).bind(range.start).bind(range.end);
  std::vector<AppUsageSummary> summaries;
  while (statement.nextRow()) {
    summaries.push_back({.appName = statement.text(0),
                         .bundleID = statement.optionalText(1),
                         .totalDuration = statement.real(2),
                         .sessionCount = statement.count(3),
                         .latestTitle = statement.optionalText(4)});
  }
  return summaries;
}

constexpr char kEndOpenAnnotations[] =
    "UPDATE annotations SET ended_at = ? WHERE ended_at IS NULL;";

void Database::endCurrentAnnotation(Date at) {
  Statement(db_.get(), kEndOpenAnnotations).bind(at).execute();
}

constexpr char kInsertAnnotation[] =
    R"(INSERT INTO annotations (text, started_at, ended_at)
VALUES (?, ?, ?);)";

std::int64_t Database::insertAnnotation(const Annotation& annotation) {
  endCurrentAnnotation(annotation.startedAt);
  Statement(db_.get(), kInsertAnnotation)
      .bind(annotation.text)
      .bind(annotation.startedAt)
      .bind(annotation.endedAt)
      .execute();
  return sqlite3_last_insert_rowid(db_.get());
}

constexpr char kAnnotationsOfDay[] =
    R"(SELECT id, text, started_at, ended_at
FROM annotations
WHERE started_at < ? AND (ended_at IS NULL OR ended_at > ?)
ORDER BY started_at DESC
LIMIT ?;)";

std::vector<Annotation> Database::fetchAnnotations(Date day, std::int64_t limit) {
  const DayRange range = calendar_.dayOf(day);
  Statement statement(db_.get(), kAnnotationsOfDay);
  statement.bind(range.end).bind(range.start).bindLimit(limit);
  std::vector<Annotation> annotations;
  while (statement.nextRow()) {
    annotations.push_back({.id = statement.rowID(0),
                           .text = statement.text(1),
                           .startedAt = statement.date(2),
                           .endedAt = statement.optionalDate(3)});
  }
  return annotations;
}

constexpr char kCurrentAnnotation[] =
    R"(SELECT id, text, started_at, ended_at
FROM annotations
WHERE ended_at IS NULL
ORDER BY started_at DESC
LIMIT 1;)";

std::optional<Annotation> Database::currentAnnotation() {
  Statement statement(db_.get(), kCurrentAnnotation);
  if (!statement.nextRow()) return std::nullopt;
  return Annotation{.id = statement.rowID(0),
                    .text = statement.text(1),
                    .startedAt = statement.date(2),
                    .endedAt = {}};
}

}  // namespace tessum
