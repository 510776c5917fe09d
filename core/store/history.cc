#include "core/store/history.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

#include "core/store/statement.h"

namespace tessum {
namespace {

constexpr int kLockPatienceMilliseconds = 1000;

// Rows of one read when all of them are visited.
constexpr std::int64_t kRowsPerStep = 2000;

// Throws unless the last read of `db` came to its end: a Statement stops at an error as it stops
// after the last row.
void requireComplete(sqlite3* db) {
  if (sqlite3_errcode(db) != SQLITE_DONE) {
    throw DatabaseError::executionFailed(sqlite3_errmsg(db));
  }
}

// Columns: id, app_name, bundle_id, title, start_time, end_time.
std::vector<Activity> readSessions(Statement& statement, sqlite3* db) {
  std::vector<Activity> sessions;
  while (statement.nextRow()) {
    sessions.push_back({.id = statement.rowID(0),
                        .appName = statement.text(1),
                        .bundleID = statement.optionalText(2),
                        .title = statement.optionalText(3),
                        .startTime = statement.date(4),
                        .endTime = statement.optionalDate(5)});
  }
  requireComplete(db);
  return sessions;
}

// Columns: id, text, started_at, ended_at.
std::vector<Annotation> readNotes(Statement& statement, sqlite3* db) {
  std::vector<Annotation> notes;
  while (statement.nextRow()) {
    notes.push_back({.id = statement.rowID(0),
                     .text = statement.text(1),
                     .startedAt = statement.date(2),
                     .endedAt = statement.optionalDate(3)});
  }
  requireComplete(db);
  return notes;
}

// Takes back what was written since it was begun, unless it is kept.
class Transaction {
 public:
  explicit Transaction(sqlite3* db) : db_(db) { Statement(db_, "BEGIN IMMEDIATE;").execute(); }
  ~Transaction() {
    if (sqlite3_get_autocommit(db_) == 0) {
      sqlite3_exec(db_, "ROLLBACK;", nullptr, nullptr, nullptr);
    }
  }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void keep() { Statement(db_, "COMMIT;").execute(); }

 private:
  sqlite3* db_;
};

std::vector<std::string> checkIntegrity(sqlite3* db) {
  std::vector<std::string> findings;
  Statement statement(db, "PRAGMA integrity_check(5);");
  while (statement.nextRow()) findings.push_back(statement.text(0));
  requireComplete(db);
  if (findings.size() == 1 && findings.front() == "ok") findings.clear();
  return findings;
}

}  // namespace

std::string recordPath(const Locations& locations) {
  return locations.dataFolder() + "/activities.db";
}

// The message of an error ends with the text that SQLite has for its code.
std::string remedy(const DatabaseError& error) {
  const std::string& text = error.errorDescription();
  if (text.ends_with(sqlite3_errstr(SQLITE_BUSY))) {
    return "Another program is using the record. Try again; if that does not help, end it.";
  }
  if (text.ends_with(sqlite3_errstr(SQLITE_READONLY))) {
    return "Give yourself the right to write to the record and its folder.";
  }
  if (text.ends_with(sqlite3_errstr(SQLITE_CANTOPEN))) {
    return "Give yourself the right to read and write the record and its folder.";
  }
  if (text.ends_with(sqlite3_errstr(SQLITE_FULL))) return "Make room on the disk.";
  return remedyForDamage();
}

std::string remedyForDamage() {
  return "Stop recording and put a copy made with \"Tessum backup\" in its place. Without one, the "
         "command .recover of the program sqlite3 saves what can be read.";
}

void Record::Close::operator()(sqlite3* db) const noexcept {
  sqlite3_close(db);
}

Record::Record(const std::string& path, Access access) {
  std::error_code ignored;
  if (std::filesystem::status(path, ignored).type() == std::filesystem::file_type::not_found) {
    throw NoRecord("there is no record yet at " + path + "; \"Tessum record\" begins one");
  }
  sqlite3* db = nullptr;
  const int flags = access == Access::read ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
  const int result = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
  db_.reset(db);
  if (result != SQLITE_OK) {
    throw DatabaseError::openFailed(db == nullptr ? "out of memory" : sqlite3_errmsg(db));
  }
  sqlite3_busy_timeout(db, kLockPatienceMilliseconds);
}

Record::~Record() = default;

void Record::run(const char* sql) {
  if (sqlite3_exec(db_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw DatabaseError::executionFailed(sqlite3_errmsg(db_.get()));
  }
}

constexpr char kSessionsBegunIn[] =
    R"(SELECT id, app_name, bundle_id, title, start_time, end_time
FROM activities
WHERE start_time >= ? AND start_time < ?
ORDER BY start_time, id;)";

std::vector<Activity> Record::sessionsBegunIn(const DayRange& range) {
  Statement statement(db_.get(), kSessionsBegunIn);
  statement.bind(range.start).bind(range.end);
  return readSessions(statement, db_.get());
}

constexpr char kNotesIn[] =
    R"(SELECT id, text, started_at, ended_at
FROM annotations
WHERE started_at < ? AND (ended_at IS NULL OR ended_at > ?)
ORDER BY started_at, id;)";

std::vector<Annotation> Record::notesIn(const DayRange& range) {
  Statement statement(db_.get(), kNotesIn);
  statement.bind(range.end).bind(range.start);
  return readNotes(statement, db_.get());
}

constexpr char kSearch[] =
    R"(SELECT id, app_name, bundle_id, title, start_time, end_time
FROM activities
WHERE app_name LIKE ?1 OR title LIKE ?1
ORDER BY start_time DESC, id DESC
LIMIT ?2;)";

std::vector<Activity> Record::search(const std::string& query, std::int64_t limit) {
  Statement statement(db_.get(), kSearch);
  statement.bind("%" + query + "%").bindLimit(limit);
  return readSessions(statement, db_.get());
}

constexpr char kCurrentNote[] =
    R"(SELECT id, text, started_at, ended_at
FROM annotations
WHERE ended_at IS NULL
ORDER BY started_at DESC
LIMIT 1;)";

std::optional<Annotation> Record::currentNote() {
  Statement statement(db_.get(), kCurrentNote);
  auto notes = readNotes(statement, db_.get());
  if (notes.empty()) return std::nullopt;
  return std::move(notes.front());
}

constexpr char kOpenSessions[] =
    R"(SELECT id, app_name, bundle_id, title, start_time, end_time
FROM activities
WHERE end_time IS NULL
ORDER BY start_time, id;)";

std::vector<Activity> Record::openSessions() {
  Statement statement(db_.get(), kOpenSessions);
  return readSessions(statement, db_.get());
}

// Every row is behind the one before it by begin and row id; this one is before all of a range.
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

void Record::visitSessions(const DayRange& range,
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

constexpr char kNotesBehind[] =
    R"(SELECT id, text, started_at, ended_at
FROM annotations
WHERE (started_at, id) > (?, ?) AND started_at < ?
ORDER BY started_at, id
LIMIT ?;)";

void Record::visitNotes(const DayRange& range,
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

std::vector<std::string> Record::damage() {
  // A copy is checked, as the check holds the lock for as long as it takes.
  sqlite3* copy = nullptr;
  const int result = sqlite3_open(":memory:", &copy);
  const Connection owned(copy);
  if (result != SQLITE_OK) throw DatabaseError::openFailed("out of memory");
  copyInto(copy);
  return checkIntegrity(copy);
}

constexpr char kStartOfNext[] =
    R"(SELECT id, app_name, bundle_id, title, start_time, end_time
FROM activities
WHERE (start_time, id) > (?1, ?2)
ORDER BY start_time, id
LIMIT 1;)";

std::optional<Date> Record::startOfNext(const Activity& session) {
  Statement statement(db_.get(), kStartOfNext);
  statement.bind(session.startTime).bindRowID(session.id.value_or(0));
  const auto next = readSessions(statement, db_.get());
  if (next.empty()) return std::nullopt;
  return next.front().startTime;
}

constexpr char kTrial[] = "INSERT INTO activities (app_name, start_time) VALUES ('', 0);";

void Record::tryWriting() {
  const Transaction transaction(db_.get());
  Statement(db_.get(), kTrial).execute();
}

constexpr char kEndSession[] =
    "UPDATE activities SET end_time = ? WHERE id = ? AND end_time IS NULL;";

void Record::endSession(std::int64_t id, Date end) {
  Statement(db_.get(), kEndSession).bind(end).bindRowID(id).execute();
}

// Page by page, with the lock released in between: a change made meanwhile begins the copy anew.
void Record::copyInto(sqlite3* target) {
  struct Finish {
    void operator()(sqlite3_backup* backup) const noexcept { sqlite3_backup_finish(backup); }
  };
  constexpr int kPagesPerStep = 256;
  constexpr int kPauseMilliseconds = 5;
  constexpr int kMostPauses = kLockPatienceMilliseconds / kPauseMilliseconds;

  std::unique_ptr<sqlite3_backup, Finish> backup(
      sqlite3_backup_init(target, "main", db_.get(), "main"));
  if (backup == nullptr) throw DatabaseError::executionFailed(sqlite3_errmsg(target));
  int result = SQLITE_OK;
  for (int pauses = 0; result != SQLITE_DONE;) {
    result = sqlite3_backup_step(backup.get(), kPagesPerStep);
    if (result == SQLITE_OK || result == SQLITE_DONE) continue;
    const bool isLocked = result == SQLITE_BUSY || result == SQLITE_LOCKED;
    if (!isLocked || ++pauses > kMostPauses) {
      throw DatabaseError::executionFailed(sqlite3_errstr(result));
    }
    sqlite3_sleep(kPauseMilliseconds);
  }
}

void Record::copyTo(const std::string& path) {
  // The file is made here, for the user alone; SQLite takes an empty one for an empty database.
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file < 0) throw std::system_error(errno, std::generic_category(), "cannot create " + path);
  close(file);
  struct Remove {
    const std::string& path;
    bool isKept = false;
    ~Remove() {
      if (!isKept) unlink(path.c_str());
    }
  } unfinished{path};

  sqlite3* copy = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &copy, SQLITE_OPEN_READWRITE, nullptr);
  const Connection owned(copy);
  if (result != SQLITE_OK) {
    throw DatabaseError::openFailed(copy == nullptr ? "out of memory" : sqlite3_errmsg(copy));
  }
  copyInto(copy);
  if (!checkIntegrity(copy).empty()) {
    throw DatabaseError::executionFailed(sqlite3_errstr(SQLITE_CORRUPT));
  }
  unfinished.isKept = true;
}

constexpr char kSelectSessions[] =
    R"(SELECT COUNT(*), MIN(start_time), MAX(start_time), MAX(id),
       COALESCE(SUM(end_time - start_time), 0)
FROM activities
WHERE start_time >= ? AND start_time < ?
  AND (?3 IS NULL OR app_name = ?3)
  AND (?4 IS NULL OR instr(lower(title), lower(?4)) > 0);)";

constexpr char kSelectNotes[] =
    R"(SELECT COUNT(*), MIN(started_at), MAX(started_at), MAX(id)
FROM annotations
WHERE started_at >= ? AND started_at < ?;)";

Selected Record::select(const Selection& selection) {
  Selected selected;
  const auto widen = [&](Date first, Date last) {
    if (!selected.first || first.secondsSince1970 < selected.first->secondsSince1970) {
      selected.first = first;
    }
    if (!selected.last || last.secondsSince1970 > selected.last->secondsSince1970) {
      selected.last = last;
    }
  };
  const DayRange range = selection.begun.value_or(kAllTimes);
  Statement sessions(db_.get(), kSelectSessions);
  sessions.bind(range.start).bind(range.end);
  sessions.bind(selection.appName).bind(selection.titlePart);
  while (sessions.nextRow()) {
    selected.sessions = sessions.rowID(0);
    if (selected.sessions == 0) continue;
    widen(sessions.date(1), sessions.date(2));
    selected.lastSession = sessions.rowID(3);
    selected.seconds = sessions.real(4);
  }
  requireComplete(db_.get());
  if (!selection.includesNotes()) return selected;
  Statement notes(db_.get(), kSelectNotes);
  notes.bind(range.start).bind(range.end);
  while (notes.nextRow()) {
    selected.notes = notes.rowID(0);
    if (selected.notes == 0) continue;
    widen(notes.date(1), notes.date(2));
    selected.lastNote = notes.rowID(3);
  }
  requireComplete(db_.get());
  return selected;
}

constexpr char kForgetSessions[] =
    R"(DELETE FROM activities
WHERE start_time >= ? AND start_time < ?
  AND (?3 IS NULL OR app_name = ?3)
  AND (?4 IS NULL OR instr(lower(title), lower(?4)) > 0)
  AND id <= ?5;)";

constexpr char kForgetNotes[] =
    "DELETE FROM annotations WHERE started_at >= ? AND started_at < ? AND id <= ?;";

void Record::forget(const Selection& selection, const Selected& selected) {
  const DayRange range = selection.begun.value_or(kAllTimes);
  run("PRAGMA secure_delete = ON;");
  Transaction transaction(db_.get());
  Statement(db_.get(), kForgetSessions)
      .bind(range.start)
      .bind(range.end)
      .bind(selection.appName)
      .bind(selection.titlePart)
      .bindRowID(selected.lastSession)
      .execute();
  if (selection.includesNotes()) {
    Statement(db_.get(), kForgetNotes)
        .bind(range.start)
        .bind(range.end)
        .bindRowID(selected.lastNote)
        .execute();
  }
  transaction.keep();
}

}  // namespace tessum
