// The history as a person uses it: to read all of it, to check, mend and copy it, and to delete
// parts. The bodies are in history.cc (opening and reading), history_notes.cc, history_import.cc,
// and history_upkeep.cc (all the rest).
//
// The programs that record and answer use `Database`, which never waits, never deletes and gives
// what it could read. A person wants to know when something could not be read, so this connection
// reports every failure; it waits a moment for a lock that another program holds; and it never
// creates a file.
//
// The recorder keeps in memory what a lock does not let it write, and an assistant that meets a
// lock reads nothing. So no lock is ever held while a person is asked or output is written, and
// long reads are done in short steps.

#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/date.h"
#include "core/platform/calendar.h"
#include "core/store/database_error.h"
#include "core/store/history_path.h"
#include "core/store/records.h"

struct sqlite3;

namespace tessum {

// There is no history yet.
class NoHistory : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What a person can do about `error`; one sentence or two.
[[nodiscard]] std::string remedy(const DatabaseError& error);
[[nodiscard]] std::string remedyForDamage();

// Two notes would overlap.
class NotesOverlap : public std::runtime_error {
 public:
  explicit NotesOverlap(Annotation other)
      : std::runtime_error("two notes would overlap"), other_(std::move(other)) {}

  // The one that is there already.
  [[nodiscard]] const Annotation& other() const { return other_; }

 private:
  Annotation other_;
};

// Longer than any day: every moment there is.
inline constexpr DayRange kAllTimes{{-std::numeric_limits<double>::infinity()},
                                    {std::numeric_limits<double>::infinity()}};

// Tells whether a text of the history, which is UTF-8, is meant. Must not throw.
using TextTest = std::function<bool(std::string_view)>;

// Tells whether a session is meant, by its application and title; within a statement its other
// members are not set. Must not throw.
using SessionTest = std::function<bool(const Activity&)>;

// What to forget: what meets each condition that is present. Notes are forgotten only by their day.
struct Selection {
  std::optional<DayRange> begun;  // begun within
  SessionTest isMeant;            // all sessions are where it is empty

  [[nodiscard]] bool includesNotes() const { return begun && !isMeant; }
};

// What a selection holds at one moment. Rows that are stored later do not belong to it.
struct Selected {
  std::int64_t sessions = 0;
  std::int64_t notes = 0;
  double seconds = 0;            // of the sessions that have ended
  std::optional<Date> first;     // begin of the first session or note; absent when there is none
  std::optional<Date> last;      // begin of the last one
  std::int64_t lastSession = 0;  // row ids up to which the selection reaches
  std::int64_t lastNote = 0;
};

// A session, and what takes its place: sessions that do not overlap, or nothing.
struct Replacement {
  Activity session;
  std::vector<Activity> by;
};

// The texts of sessions that a visit needs. The others are empty or absent, which saves time.
enum class Texts { none, application, all };

// Seconds for which a session may have begun before a range that it overlaps. Nothing in the
// history leads from an end to its session, so all sessions of that time are looked at.
inline constexpr double kLongestSession = 31 * 86400.0;

// One connection to an existing history. Every call throws DatabaseError when it cannot be
// completed, and then has changed nothing. Not thread-safe.
class History {
 public:
  enum class Access { read, write };

  // Throws NoHistory when there is no file at `path`.
  History(const std::string& path, Access access);
  ~History();
  History(const History&) = delete;
  History& operator=(const History&) = delete;

  ////////////////////////////////////////////////////////////////////////////////////////////
  // Reading.

  // The sessions that began in `range`, the oldest first.
  [[nodiscard]] std::vector<Activity> sessionsBegunIn(const DayRange& range);

  // The notes that overlap `range`, the oldest first.
  [[nodiscard]] std::vector<Annotation> notesIn(const DayRange& range);

  // The notes that have not ended, the newest first; there is one at most unless somebody else
  // wrote to the database.
  [[nodiscard]] std::vector<Annotation> openNotes();

  // The sessions that have no end, the oldest first.
  [[nodiscard]] std::vector<Activity> openSessions();

  // Visits every session, or note, that began in `range`, the oldest first. No lock is held during
  // a visit.
  void visitSessions(const DayRange& range, const std::function<void(const Activity&)>& visit);
  void visitNotes(const DayRange& range, const std::function<void(const Annotation&)>& visit);

  // Visits every session that overlaps `range`, the oldest first: one that began in it, or that
  // began up to kLongestSession before it and ends in it or later. An open one ends at `now`. No
  // lock is held during a visit.
  void visitSessionsIn(const DayRange& range, Date now,
                       const std::function<void(const Activity&)>& visit, Texts texts = Texts::all);

  // The names of all applications with a session, in the order of their bytes.
  [[nodiscard]] std::vector<std::string> appNames();

  // From the first to the last moment at which a session or a note began; absent where there is
  // none.
  [[nodiscard]] std::optional<DayRange> beginnings();

  ////////////////////////////////////////////////////////////////////////////////////////////
  // Mending and copying.

  // What SQLite finds wrong in the history, a sentence each; empty when it is sound.
  [[nodiscard]] std::vector<std::string> damage();

  // The beginning of the first session that began after `session`, which is stored; absent when
  // it is the last.
  [[nodiscard]] std::optional<Date> startOfNext(const Activity& session);

  // Finds out whether rows can be written: writes one and takes it back.
  void tryWriting();

  // Ends the session with row id `id` at `end`, if it has not ended yet.
  void endSession(std::int64_t id, Date end);

  // Deletes the note with row id `id`. The row's bytes are overwritten.
  void deleteNote(std::int64_t id);

  // The note with row id `id`; absent when there is none.
  [[nodiscard]] std::optional<Annotation> note(std::int64_t id);

  // Stores `note`, or changes the one that has its id. Throws NotesOverlap where another has some
  // of its time; an open one has it up to `now`. The old bytes are overwritten.
  void putNote(const Annotation& note, Date now);

  // Makes the file at `path` a copy of the history as it is at one moment. There must be no file at
  // `path` yet; when copying fails there is none afterwards. Throws std::system_error when it
  // cannot be created.
  void copyTo(const std::string& path);

  ////////////////////////////////////////////////////////////////////////////////////////////
  // Taking in records of other histories. One is there already if a session has its application,
  // its title and the second of its beginning, or a note its text and that second.

  [[nodiscard]] bool hasLike(const Activity& session);
  [[nodiscard]] bool hasLike(const Annotation& note);

  // Stores what is not there yet, in one step, and returns how many that were. The lock is held
  // for some ten microseconds a record.
  std::int64_t addMissing(std::span<const Activity> sessions);
  std::int64_t addMissing(std::span<const Annotation> notes);

  ////////////////////////////////////////////////////////////////////////////////////////////
  // Forgetting.

  [[nodiscard]] Selected select(const Selection& selection);

  // Deletes what `selected` found for `selection`, in one step. The rows' bytes are overwritten.
  void forget(const Selection& selection, const Selected& selected);

  // Makes all `replacements` in one step. The first in a session's place has its row id, and the
  // end that the row has got since it was read. The rows' bytes are overwritten.
  void replace(const std::vector<Replacement>& replacements);

  // Writes the whole file anew. A row that moves to another page leaves its bytes in the old one,
  // where overwriting it does not reach them. Takes as much memory as the file has bytes, and locks
  // the database meanwhile: 2.3 seconds for 100 MB on a busy machine. Waits for the locks of others
  // for kLockPatienceSeconds.
  void writeAnew();

 private:
  // How long a lock that another program holds is waited for.
  static constexpr int kLockPatienceMilliseconds = 1000;

  struct Close {
    void operator()(sqlite3* db) const noexcept;
  };
  using Connection = std::unique_ptr<sqlite3, Close>;

  void copyInto(sqlite3* target);
  void run(const char* sql);

  Connection db_;
};

}  // namespace tessum
