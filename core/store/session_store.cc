#include "core/store/session_store.h"

#include <sqlite3.h>

#include <utility>

#include "core/store/database_error.h"
#include "core/store/statement.h"
#include "core/store/transaction.h"

namespace tessum {

void SessionStore::Close::operator()(sqlite3* db) const noexcept {
  sqlite3_close(db);
}

SessionStore::SessionStore(std::string path) : path_(std::move(path)) {}

SessionStore::~SessionStore() = default;

void SessionStore::open() {
  sqlite3* db = nullptr;
  const int result = sqlite3_open_v2(path_.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
  std::unique_ptr<sqlite3, Close> opened(db);
  if (result != SQLITE_OK) {
    throw DatabaseError::openFailed(result, db == nullptr ? "out of memory" : sqlite3_errmsg(db));
  }
  db_ = std::move(opened);
}

std::vector<std::int64_t> SessionStore::write(std::span<const SessionChange> changes) {
  if (!db_) open();
  std::vector<std::int64_t> rowIDs;
  Transaction transaction(db_.get());
  for (const SessionChange& change : changes) rowIDs.push_back(writeOne(change));
  transaction.keep();
  return rowIDs;
}

constexpr char kInsert[] =
    R"(INSERT INTO activities (app_name, bundle_id, title, start_time, end_time)
VALUES (?, ?, ?, ?, ?);)";

constexpr char kUpdate[] = "UPDATE activities SET title = ?, end_time = ? WHERE id = ?;";

constexpr char kDelete[] = "DELETE FROM activities WHERE id = ?;";

std::int64_t SessionStore::writeOne(const SessionChange& change) {
  if (!change.session) {
    if (change.rowID) Statement(db_.get(), kDelete).bindRowID(*change.rowID).execute();
    return 0;
  }
  const Activity& session = *change.session;
  if (change.rowID) {
    Statement(db_.get(), kUpdate)
        .bind(session.title)
        .bind(session.endTime)
        .bindRowID(*change.rowID)
        .execute();
    return *change.rowID;
  }
  Statement(db_.get(), kInsert)
      .bind(session.appName)
      .bind(session.bundleID)
      .bind(session.title)
      .bind(session.startTime)
      .bind(session.endTime)
      .execute();
  return sqlite3_last_insert_rowid(db_.get());
}

}  // namespace tessum
