// Reads the rows of a statement to their end, with every failure reported. For History alone.

#pragma once

#include <cstddef>
#include <vector>

#include "core/store/history.h"
#include "core/store/records.h"
#include "core/store/statement.h"

namespace tessum {

// Throws DatabaseError if the last read of `db` ended early: a Statement stops at an error as it
// does after the last row.
void requireComplete(sqlite3* db);

// The statement's columns must be id, app_name, bundle_id, title, start_time, end_time.
[[nodiscard]] std::vector<Activity> readSessions(Statement& statement, sqlite3* db);

// Reads them into the first elements of `sessions`, whose memory it reuses; returns how many. The
// columns of other texts than `texts` are not looked at.
[[nodiscard]] std::size_t rereadSessions(Statement& statement, sqlite3* db,
                                         std::vector<Activity>& sessions, Texts texts);

// The statement's columns must be id, text, started_at, ended_at.
[[nodiscard]] std::vector<Annotation> readNotes(Statement& statement, sqlite3* db);

}  // namespace tessum
