// The part of History that takes in records of other histories.

#include <sqlite3.h>

#include <cmath>

#include "core/store/history.h"
#include "core/store/history_rows.h"
#include "core/store/transaction.h"

namespace tessum {
namespace {

// The second that holds the beginning of a record.
DayRange secondOf(Date start) {
  const Date second{std::floor(start.secondsSince1970)};
  return {second, movedBy(second, 1)};
}

// The plus keeps SQLite from the index of the applications, of which one may have all the rows.
constexpr char kSessionsLike[] =
    R"(SELECT COUNT(*) FROM activities
WHERE start_time >= ? AND start_time < ? AND +app_name = ? AND title IS ?;)";

constexpr char kNotesLike[] =
    "SELECT COUNT(*) FROM annotations WHERE started_at >= ? AND started_at < ? AND text = ?;";

bool hasAny(Statement& statement, sqlite3* db) {
  bool hasAny = false;
  while (statement.nextRow()) hasAny = statement.rowID(0) > 0;
  requireComplete(db);
  return hasAny;
}

void bindLike(Statement& statement, const Activity& session) {
  const DayRange second = secondOf(session.startTime);
  statement.reset();
  statement.bind(second.start).bind(second.end).bind(session.appName).bind(session.title);
}

void bindLike(Statement& statement, const Annotation& note) {
  const DayRange second = secondOf(note.startedAt);
  statement.reset();
  statement.bind(second.start).bind(second.end).bind(note.text);
}

constexpr char kAddSession[] =
    R"(INSERT INTO activities (app_name, bundle_id, title, start_time, end_time)
VALUES (?, ?, ?, ?, ?);)";

// One that has no end ends where the next one begins.
constexpr char kAddNote[] =
    R"(INSERT INTO annotations (text, started_at, ended_at)
VALUES (?1, ?2, COALESCE(?3, (SELECT MIN(started_at) FROM annotations WHERE started_at > ?2)));)";

void bindAll(Statement& statement, const Activity& session) {
  statement.bind(session.appName).bind(session.bundleID).bind(session.title);
  statement.bind(session.startTime).bind(session.endTime);
}

void bindAll(Statement& statement, const Annotation& note) {
  statement.bind(note.text).bind(note.startedAt).bind(note.endedAt);
}

// Adds the records that `find` does not find, by `add`, and returns their number.
template <typename Record>
std::int64_t addAllMissing(sqlite3* db, std::span<const Record> records, Statement& find,
                           Statement& add) {
  std::int64_t added = 0;
  for (const Record& record : records) {
    bindLike(find, record);
    if (hasAny(find, db)) continue;
    add.reset();
    bindAll(add, record);
    add.execute();
    added += 1;
  }
  return added;
}

}  // namespace

bool History::hasLike(const Activity& session) {
  Statement statement(db_.get(), kSessionsLike);
  bindLike(statement, session);
  return hasAny(statement, db_.get());
}

bool History::hasLike(const Annotation& note) {
  Statement statement(db_.get(), kNotesLike);
  bindLike(statement, note);
  return hasAny(statement, db_.get());
}

std::int64_t History::addMissing(std::span<const Activity> sessions) {
  Transaction transaction(db_.get());
  Statement find(db_.get(), kSessionsLike);
  Statement add(db_.get(), kAddSession);
  const std::int64_t added = addAllMissing(db_.get(), sessions, find, add);
  transaction.keep();
  return added;
}

std::int64_t History::addMissing(std::span<const Annotation> notes) {
  Transaction transaction(db_.get());
  Statement find(db_.get(), kNotesLike);
  Statement add(db_.get(), kAddNote);
  const std::int64_t added = addAllMissing(db_.get(), notes, find, add);
  transaction.keep();
  return added;
}

}  // namespace tessum
