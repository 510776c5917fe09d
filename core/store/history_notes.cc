// The part of History that reads and corrects notes.

#include "core/store/history.h"
#include "core/store/history_rows.h"
#include "core/store/transaction.h"

namespace tessum {

constexpr char kNotesIn[] =
    R"(SELECT id, text, started_at, ended_at
FROM annotations
WHERE started_at < ? AND (ended_at IS NULL OR ended_at > ?)
ORDER BY started_at, id;)";

std::vector<Annotation> History::notesIn(const DayRange& range) {
  Statement statement(db_.get(), kNotesIn);
  statement.bind(range.end).bind(range.start);
  return readNotes(statement, db_.get());
}

constexpr char kOpenNotes[] =
    R"(SELECT id, text, started_at, ended_at
FROM annotations
WHERE ended_at IS NULL
ORDER BY started_at DESC, id DESC;)";

std::vector<Annotation> History::openNotes() {
  Statement statement(db_.get(), kOpenNotes);
  return readNotes(statement, db_.get());
}

constexpr char kNote[] = "SELECT id, text, started_at, ended_at FROM annotations WHERE id = ?;";

std::optional<Annotation> History::note(std::int64_t id) {
  Statement statement(db_.get(), kNote);
  statement.bindRowID(id);
  auto notes = readNotes(statement, db_.get());
  if (notes.empty()) return std::nullopt;
  return std::move(notes.front());
}

constexpr char kDeleteNote[] = "DELETE FROM annotations WHERE id = ?;";

void History::deleteNote(std::int64_t id) {
  run("PRAGMA secure_delete = ON;");
  Statement(db_.get(), kDeleteNote).bindRowID(id).execute();
}

constexpr char kInsertNote[] =
    "INSERT INTO annotations (text, started_at, ended_at) VALUES (?, ?, ?);";

constexpr char kChangeNote[] =
    "UPDATE annotations SET text = ?, started_at = ?, ended_at = ? WHERE id = ?;";

void History::putNote(const Annotation& note, Date now) {
  run("PRAGMA secure_delete = ON;");
  Transaction transaction(db_.get());
  const Date end = note.endedAt.value_or(now);
  for (const Annotation& other : notesIn({note.startedAt, end})) {
    const bool isOver = secondsBetween(note.startedAt, other.endedAt.value_or(now)) <= 0;
    if (other.id != note.id && !isOver) throw NotesOverlap(other);
  }
  Statement statement(db_.get(), note.id ? kChangeNote : kInsertNote);
  statement.bind(note.text).bind(note.startedAt).bind(note.endedAt);
  if (note.id) statement.bindRowID(*note.id);
  statement.execute();
  transaction.keep();
}

}  // namespace tessum
