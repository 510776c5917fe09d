// What the recorder knows should be in the database, and what is there by now.
//
// The monitor writes as if every write succeeded at once. The journal keeps each session in memory
// until it is stored: a queue of its own writes what has changed in one transaction that waits for
// no lock, and a write that fails is tried again until it succeeds. So the main thread waits for
// neither a lock nor a disk, and a lock that another program holds delays a session but does not
// lose it.

#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/loop/main_loop.h"
#include "core/loop/serial_queue.h"
#include "core/store/session_writer.h"

namespace tessum {

// The only writer of sessions to its database. Main thread only.
class SessionJournal final : public SessionWriter {
 public:
  // Unsaved sessions are kept up to this number; beyond it the oldest are lost, and said to be.
  static constexpr std::size_t kMostUnsaved = 20'000;

  // A write that failed is tried again after this many seconds.
  static constexpr double kRetrySeconds = 0.25;

  // How many seconds a write may fail before it is said.
  static constexpr double kPatienceSeconds = 5;

  // `path` is that of the database, which must be there; `say` gets sentences for a person. `loop`
  // and `queue` must outlive the journal, and `loop` the tasks of `queue`.
  SessionJournal(std::string path, MainLoop& loop, SerialQueue& queue,
                 std::function<void(const std::string&)> say);
  ~SessionJournal() override;
  SessionJournal(const SessionJournal&) = delete;
  SessionJournal& operator=(const SessionJournal&) = delete;

  // The ids are the journal's own. None of these throws.
  std::int64_t insert(const Activity& activity) override;
  void updateTitle(std::int64_t id, const std::string& title) override;

  // An end before the session's beginning means that it never was: its row goes, and an earlier
  // session that had lasted longer ends there as well.
  void updateEndTime(std::int64_t id, Date end) override;

  // Holds `token` until everything so far is written.
  void holdUntilWritten(std::shared_ptr<void> token);

  // Writes what is left, for `seconds` at most; false when something could not be written, which is
  // then said. Nothing may be written afterwards.
  [[nodiscard]] bool finish(double seconds);

 private:
  struct Batch;
  struct Entry {
    std::int64_t id = 0;
    std::optional<std::int64_t> rowID;
    std::optional<Activity> session;  // absent for one that never was
    bool isUnsaved = true;
    bool isInBatch = false;  // unchanged since the batch under way took it
  };

  [[nodiscard]] Entry* find(std::int64_t id);
  void markUnsaved(Entry& entry);
  void takeBack(Date end);
  void postWrite();
  void write();
  void takeResult();
  void handleFailure(const std::string& reason);
  void handleSuccess();
  void forgetOld();

  MainLoop& loop_;
  SerialQueue& queue_;
  const std::function<void(const std::string&)> say_;

  // Unsaved sessions, and the latest of the others, in the order of their beginning.
  std::deque<Entry> entries_;
  std::int64_t lastID_ = 0;
  std::size_t unsaved_ = 0;
  std::size_t lost_ = 0;

  std::shared_ptr<Batch> batch_;  // the write under way; null when there is none
  bool isWritePosted_ = false;
  std::optional<MainLoop::TimerToken> retry_;
  int failures_ = 0;  // in a row
  bool hasComplained_ = false;
  std::vector<std::shared_ptr<void>> held_;

  // The queue's alone.
  const std::shared_ptr<class SessionStore> store_;

  // What is posted holds this weakly: once it is gone, so is the journal.
  const std::shared_ptr<SessionJournal*> self_;
};

}  // namespace tessum
