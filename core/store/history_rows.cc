#include "core/store/history_rows.h"

#include <sqlite3.h>

#include "core/store/database_error.h"

namespace tessum {

void requireComplete(sqlite3* db) {
  const int code = sqlite3_errcode(db);
  if (code != SQLITE_DONE) throw DatabaseError::executionFailed(code, sqlite3_errmsg(db));
}

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
