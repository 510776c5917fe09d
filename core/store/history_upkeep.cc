// The part of History that checks, mends, copies and deletes.

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "core/store/history.h"
#include "core/store/history_rows.h"
#include "core/store/lock_patience.h"
#include "core/store/session_test_function.h"
#include "core/store/transaction.h"

namespace tessum {
namespace {

std::vector<std::string> checkIntegrity(sqlite3* db) {
  std::vector<std::string> findings;
  Statement statement(db, "PRAGMA integrity_check(5);");
  while (statement.nextRow()) findings.push_back(statement.text(0));
  requireComplete(db);
  if (findings.size() == 1 && findings.front() == "ok") findings.clear();
  return findings;
}

}  // namespace

std::vector<std::string> History::damage() {
  // A copy is checked, because the check holds the lock until it is done.
  sqlite3* copy = nullptr;
  const int result = sqlite3_open(":memory:", &copy);
  const Connection owned(copy);
  if (result != SQLITE_OK) throw DatabaseError::openFailed(result, "out of memory");
  copyInto(copy);
  return checkIntegrity(copy);
}

constexpr char kTrial[] = "INSERT INTO activities (app_name, start_time) VALUES ('', 0);";

void History::tryWriting() {
  const Transaction transaction(db_.get());
  Statement(db_.get(), kTrial).execute();
}

constexpr char kEndSession[] =
    "UPDATE activities SET end_time = ? WHERE id = ? AND end_time IS NULL;";

void History::endSession(std::int64_t id, Date end) {
  Statement(db_.get(), kEndSession).bind(end).bindRowID(id).execute();
}

// Page by page, with the lock released in between: a change in the meantime restarts the copy.
void History::copyInto(sqlite3* target) {
  struct Finish {
    void operator()(sqlite3_backup* backup) const noexcept { sqlite3_backup_finish(backup); }
  };
  constexpr int kPagesPerStep = 256;
  constexpr int kPauseMilliseconds = 5;
  constexpr int kMostPauses = kLockPatienceMilliseconds / kPauseMilliseconds;

  std::unique_ptr<sqlite3_backup, Finish> backup(
      sqlite3_backup_init(target, "main", db_.get(), "main"));
  if (backup == nullptr) {
    throw DatabaseError::executionFailed(sqlite3_errcode(target), sqlite3_errmsg(target));
  }
  int result = SQLITE_OK;
  for (int pauses = 0; result != SQLITE_DONE;) {
    result = sqlite3_backup_step(backup.get(), kPagesPerStep);
    if (result == SQLITE_OK || result == SQLITE_DONE) continue;
    const bool isLocked = result == SQLITE_BUSY || result == SQLITE_LOCKED;
    if (!isLocked || ++pauses > kMostPauses) {
      throw DatabaseError::executionFailed(result, sqlite3_errstr(result));
    }
    sqlite3_sleep(kPauseMilliseconds);
  }
}

void History::copyTo(const std::string& path) {
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
    throw DatabaseError::openFailed(result,
                                    copy == nullptr ? "out of memory" : sqlite3_errmsg(copy));
  }
  copyInto(copy);
  if (!checkIntegrity(copy).empty()) {
    throw DatabaseError::executionFailed(SQLITE_CORRUPT, sqlite3_errstr(SQLITE_CORRUPT));
  }
  unfinished.isKept = true;
}

constexpr char kSelectSessions[] =
    R"(SELECT COUNT(*), MIN(start_time), MAX(start_time), MAX(id),
       COALESCE(SUM(end_time - start_time), 0)
FROM activities
WHERE start_time >= ? AND start_time < ?
  AND is_meant(app_name, bundle_id, title);)";

constexpr char kSelectNotes[] =
    R"(SELECT COUNT(*), MIN(started_at), MAX(started_at), MAX(id)
FROM annotations
WHERE started_at >= ? AND started_at < ?;)";

Selected History::select(const Selection& selection) {
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
  const SessionTestFunction function(db_.get(), selection.isMeant);
  Statement sessions(db_.get(), kSelectSessions);
  sessions.bind(range.start).bind(range.end);
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
  AND is_meant(app_name, bundle_id, title)
  AND id <= ?;)";

constexpr char kForgetNotes[] =
    "DELETE FROM annotations WHERE started_at >= ? AND started_at < ? AND id <= ?;";

void History::forget(const Selection& selection, const Selected& selected) {
  const DayRange range = selection.begun.value_or(kAllTimes);
  run("PRAGMA secure_delete = ON;");
  const SessionTestFunction function(db_.get(), selection.isMeant);
  Transaction transaction(db_.get());
  Statement(db_.get(), kForgetSessions)
      .bind(range.start)
      .bind(range.end)
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

constexpr char kDeleteSession[] = "DELETE FROM activities WHERE id = ?;";

constexpr char kChangeSession[] =
    R"(UPDATE activities
SET title = ?, start_time = ?, end_time = COALESCE(?, end_time)
WHERE id = ?;)";

constexpr char kInsertSession[] =
    R"(INSERT INTO activities (app_name, bundle_id, title, start_time, end_time)
VALUES (?, ?, ?, ?, ?);)";

void History::replace(const std::vector<Replacement>& replacements) {
  run("PRAGMA secure_delete = ON;");
  Transaction transaction(db_.get());
  for (const auto& [session, by] : replacements) {
    const std::int64_t id = session.id.value_or(0);
    if (by.empty()) {
      Statement(db_.get(), kDeleteSession).bindRowID(id).execute();
      continue;
    }
    const Activity& first = by.front();
    Statement(db_.get(), kChangeSession)
        .bind(first.title)
        .bind(first.startTime)
        .bind(first.endTime)
        .bindRowID(id)
        .execute();
    for (auto next = by.begin() + 1; next != by.end(); ++next) {
      Statement(db_.get(), kInsertSession)
          .bind(next->appName)
          .bind(next->bundleID)
          .bind(next->title)
          .bind(next->startTime)
          .bind(next->endTime)
          .execute();
    }
  }
  transaction.keep();
}

void History::writeAnew() {
  run("PRAGMA temp_store = MEMORY;");  // no copy of the history in a folder for temporary files
  outlastingLocks(kLockPatienceSeconds, [this] { run("VACUUM;"); });
}

}  // namespace tessum
