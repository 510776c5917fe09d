#include "core/store/history.h"

#include <sqlite3.h>

#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

#include "core/store/history_rows.h"
#include "core/store/statement.h"

namespace tessum {
namespace {

// Rows of one read when all of them are visited: few enough to stay in the processor's cache.
constexpr std::int64_t kRowsPerStep = 500;

}  // namespace

std::string remedy(const DatabaseError& error) {
  switch (error.code()) {
    case SQLITE_BUSY:
      return "Another program is using the history. Try again; if that does not help, end it.";
    case SQLITE_READONLY:
      return "Give yourself write access to the history and its folder.";
    case SQLITE_CANTOPEN:
      return "Give yourself read and write access to the history and its folder.";
    case SQLITE_FULL:
      return "Make room on the disk.";
    case SQLITE_IOERR:
      return "Check the disk, its cables and its free space, then try again.";
    default:
      return remedyForDamage();
  }
}

std::string remedyForDamage() {
  return "Stop recording and put a copy made with \"Tessum backup\" in its place. Without one, the "
         "command .recover of the program sqlite3 saves what can be read.";
}

void History::Close::operator()(sqlite3* db) const noexcept {
  sqlite3_close(db);
}

History::History(const std::string& path, Access access) {
  std::error_code ignored;
  if (std::filesystem::status(path, ignored).type() == std::filesystem::file_type::not_found) {
    throw NoHistory("there is no history yet at " + path + "; \"Tessum record\" starts one");
  }
  sqlite3* db = nullptr;
  // A connection's mutex is for several threads, and each access to a column would lock it.
  const int flags =
      (access == Access::read ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
  const int result = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
  db_.reset(db);
  if (result != SQLITE_OK) {
    throw DatabaseError::openFailed(result, db == nullptr ? "out of memory" : sqlite3_errmsg(db));
  }
  sqlite3_busy_timeout(db, kLockPatienceMilliseconds);
}

History::~History() = default;

void History::run(const char* sql) {
  const int result = sqlite3_exec(db_.get(), sql, nullptr, nullptr, nullptr);
  if (result != SQLITE_OK) {
    throw DatabaseError::executionFailed(result, sqlite3_errmsg(db_.get()));
  }
}

constexpr char kSessionsBegunIn[] =
    R"(SELECT id, app_name, bundle_id, title, start_time, end_time
FROM activities
WHERE start_time >= ? AND start_time < ?
ORDER BY start_time, id;)";

std::vector<Activity> History::sessionsBegunIn(const DayRange& range) {
  Statement statement(db_.get(), kSessionsBegunIn);
  statement.bind(range.start).bind(range.end);
  return readSessions(statement, db_.get());
}

constexpr char kOpenSessions[] =
    R"(SELECT id, app_name, bundle_id, title, start_time, end_time
FROM activities
WHERE end_time IS NULL
ORDER BY start_time, id;)";

std::vector<Activity> History::openSessions() {
  Statement statement(db_.get(), kOpenSessions);
  return readSessions(statement, db_.get());
}

// Each row follows the one before it by start and row id; this one precedes all rows of a range.
struct Position {
  Date start;
  std::int64_t id = std::numeric_limits<std::int64_t>::min();
};

constexpr char kSessionsBehind[] =
    R"(SELECT id, app_name, bundle_id, title, start_time, end_time
FROM activities
WHERE (start_time, id) > (?, ?) AND start_time < ?
ORDER BY start_time, id
LIMIT ?;)";

void History::visitSessions(const DayRange& range,
                            const std::function<void(const Activity&)>& visit) {
  Position last{range.start};
  while (true) {
    Statement statement(db_.get(), kSessionsBehind);
    statement.bind(last.start).bindRowID(last.id).bind(range.end).bindLimit(kRowsPerStep);
    const auto sessions = readSessions(statement, db_.get());
    if (sessions.empty()) return;
    for (const Activity& session : sessions) visit(session);
    last = {sessions.back().startTime, sessions.back().id.value_or(last.id)};
  }
}

// In the order of Texts.
constexpr const char* kTextColumns[] = {"'', NULL, NULL", "app_name, bundle_id, NULL",
                                        "app_name, bundle_id, title"};

constexpr char kSessionsInBehind[] =
    R"(FROM activities
WHERE (start_time, id) > (?, ?) AND start_time < ?
  AND (start_time >= ? OR COALESCE(end_time, ?) > ?)
ORDER BY start_time, id
LIMIT ?;)";

void History::visitSessionsIn(const DayRange& range, Date now,
                              const std::function<void(const Activity&)>& visit, Texts texts) {
  const std::string sql = std::string("SELECT id, ") +
                          kTextColumns[static_cast<std::size_t>(texts)] +
                          ", start_time, end_time " + kSessionsInBehind;
  Statement statement(db_.get(), sql.c_str());
  Position last{movedBy(range.start, -kLongestSession)};
  std::vector<Activity> sessions;
  while (true) {
    statement.reset();
    statement.bind(last.start).bindRowID(last.id).bind(range.end);
    statement.bind(range.start).bind(now).bind(range.start).bindLimit(kRowsPerStep);
    const std::size_t count = rereadSessions(statement, db_.get(), sessions, texts);
    for (std::size_t i = 0; i < count; ++i) visit(sessions[i]);
    if (static_cast<std::int64_t>(count) < kRowsPerStep) return;
    last = {sessions[count - 1].startTime, sessions[count - 1].id.value_or(last.id)};
  }
}

// Each of the four is read off the end of an index.
constexpr char kBeginnings[] =
    R"(SELECT MIN(first), MAX(last) FROM (
SELECT (SELECT MIN(start_time) FROM activities) AS first,
  (SELECT MAX(start_time) FROM activities) AS last
UNION ALL
SELECT (SELECT MIN(started_at) FROM annotations), (SELECT MAX(started_at) FROM annotations));)";

std::optional<DayRange> History::beginnings() {
  Statement statement(db_.get(), kBeginnings);
  std::optional<DayRange> range;
  while (statement.nextRow()) {
    const auto first = statement.optionalDate(0);
    if (first) range = {*first, statement.date(1)};
  }
  requireComplete(db_.get());
  return range;
}

// Jumps in the index from each name to the next one.
constexpr char kAppNames[] =
    R"(WITH RECURSIVE app(name) AS (
SELECT MIN(app_name) FROM activities
UNION ALL
SELECT (SELECT MIN(app_name) FROM activities WHERE app_name > name) FROM app
WHERE name IS NOT NULL)
SELECT name FROM app WHERE name IS NOT NULL;)";

std::vector<std::string> History::appNames() {
  Statement statement(db_.get(), kAppNames);
  std::vector<std::string> names;
  while (statement.nextRow()) names.push_back(statement.text(0));
  requireComplete(db_.get());
  return names;
}

constexpr char kNotesBehind[] =
    R"(SELECT id, text, started_at, ended_at
FROM annotations
WHERE (started_at, id) > (?, ?) AND started_at < ?
ORDER BY started_at, id
LIMIT ?;)";

void History::visitNotes(const DayRange& range,
                         const std::function<void(const Annotation&)>& visit) {
  Position last{range.start};
  while (true) {
    Statement statement(db_.get(), kNotesBehind);
    statement.bind(last.start).bindRowID(last.id).bind(range.end).bindLimit(kRowsPerStep);
    const auto notes = readNotes(statement, db_.get());
    if (notes.empty()) return;
    for (const Annotation& note : notes) visit(note);
    last = {notes.back().startedAt, notes.back().id.value_or(last.id)};
  }
}

constexpr char kStartOfNext[] =
    R"(SELECT id, app_name, bundle_id, title, start_time, end_time
FROM activities
WHERE (start_time, id) > (?1, ?2)
ORDER BY start_time, id
LIMIT 1;)";

std::optional<Date> History::startOfNext(const Activity& session) {
  Statement statement(db_.get(), kStartOfNext);
  statement.bind(session.startTime).bindRowID(session.id.value_or(0));
  const auto next = readSessions(statement, db_.get());
  if (next.empty()) return std::nullopt;
  return next.front().startTime;
}

}  // namespace tessum
