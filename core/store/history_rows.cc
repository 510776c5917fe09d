#include "core/store/history_rows.h"

#include <sqlite3.h>

#include "core/store/database_error.h"

namespace tessum {

void requireComplete(sqlite3* db) {
  const int code = sqlite3_errcode(db);
  if (code != SQLITE_DONE) throw DatabaseError::executionFailed(code, sqlite3_errmsg(db));
}

std::size_t rereadSessions(Statement& statement, sqlite3* db, std::vector<Activity>& sessions,
                           Texts texts) {
  std::size_t count = 0;
  while (statement.nextRow()) {
    if (count == sessions.size()) sessions.emplace_back();
    Activity& session = sessions[count++];
    session.id = statement.rowID(0);
    session.startTime = statement.date(4);
    session.endTime = statement.optionalDate(5);
    if (texts == Texts::none) continue;
    statement.readText(1, session.appName);
    statement.readText(2, session.bundleID);
    if (texts == Texts::all) statement.readText(3, session.title);
  }
  requireComplete(db);
  return count;
}

std::vector<Activity> readSessions(Statement& statement, sqlite3* db) {
  std::vector<Activity> sessions;
  static_cast<void>(rereadSessions(statement, db, sessions, Texts::all));
  return sessions;
}

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

}  // namespace tessum
