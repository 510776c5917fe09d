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

constexpr char kAddSession[] =
    R"(INSERT INTO activities (app_name, bundle_id, title, start_time, end_time)
VALUES (?, ?, ?, ?, ?);)";

std::int64_t History::addMissing(std::span<const Activity> sessions) {
  Transaction transaction(db_.get());
  Statement find(db_.get(), kSessionsLike);
  Statement add(db_.get(), kAddSession);
  std::int64_t added = 0;
  for (const Activity& session : sessions) {
    bindLike(find, session);
    if (hasAny(find, db_.get())) continue;
    add.reset();
    add.bind(session.appName).bind(session.bundleID).bind(session.title);
    add.bind(session.startTime).bind(session.endTime).execute();
    added += 1;
  }
  transaction.keep();
  return added;
}

// One that has no end ends where the next one begins.
constexpr char kAddNote[] =
    R"(INSERT INTO annotations (text, started_at, ended_at)
VALUES (?1, ?2, COALESCE(?3, (SELECT MIN(started_at) FROM annotations WHERE started_at > ?2)));)";

std::int64_t History::addMissing(std::span<const Annotation> notes) {
  Transaction transaction(db_.get());
  Statement find(db_.get(), kNotesLike);
  Statement add(db_.get(), kAddNote);
  std::int64_t added = 0;
  for (const Annotation& note : notes) {
    bindLike(find, note);
    if (hasAny(find, db_.get())) continue;
    add.reset();
    add.bind(note.text).bind(note.startedAt).bind(note.endedAt).execute();
    added += 1;
  }
  transaction.keep();
  return added;
}

}  // namespace tessum
