// Keeps sessions in memory until they are stored.
//
// To the monitor, every write succeeds at once. The journal keeps each session in memory until it
// is stored: a separate queue writes the changes in one transaction that does not wait for locks,
// and a failed write is retried until it succeeds. So the main thread never waits for a lock or a
// disk, and a lock held by another program delays a session but does not lose it.

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
  // The most unsaved sessions that are kept; beyond it the oldest are dropped, and reported.
  static constexpr std::size_t kMostUnsaved = 20'000;

  // Seconds before a failed write is retried.
  static constexpr double kRetrySeconds = 0.25;

  // Seconds for which writes may fail before it is reported.
  static constexpr double kPatienceSeconds = 5;

  // The database at `path` must exist; `say` receives sentences for a person. `loop` and `queue`
  // must outlive the journal, and `loop` the tasks of `queue`.
  SessionJournal(std::string path, MainLoop& loop, SerialQueue& queue,
                 std::function<void(const std::string&)> say);
  ~SessionJournal() override;
  SessionJournal(const SessionJournal&) = delete;
  SessionJournal& operator=(const SessionJournal&) = delete;

  // The ids are the journal's own. None of these throws.
  std::int64_t insert(const Activity& activity) override;
  void updateTitle(std::int64_t id, const std::string& title) override;

  // An end before the session's start deletes the session, and an earlier session that lasted
  // longer ends there, too.
  void updateEndTime(std::int64_t id, Date end) override;

  // Keeps `token` until everything so far is written.
  void holdUntilWritten(std::shared_ptr<void> token);

  // Writes the remaining changes, for `seconds` at most; if some could not be written, reports that
  // and returns false. No calls may follow.
  [[nodiscard]] bool finish(double seconds);

 private:
  struct Batch;
  struct Entry {
    std::int64_t id = 0;
    std::optional<std::int64_t> rowID;
    std::optional<Activity> session;  // absent for a deleted one
    bool isUnsaved = true;
    bool isInBatch = false;  // unchanged since the current batch took it
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

  // Unsaved sessions and the latest stored ones, in the order of their start.
  std::deque<Entry> entries_;
  std::int64_t lastID_ = 0;
  std::size_t unsaved_ = 0;
  std::size_t lost_ = 0;

  std::shared_ptr<Batch> batch_;  // the write in progress; null when there is none
  bool isWritePosted_ = false;
  std::optional<MainLoop::TimerToken> retry_;
  int failures_ = 0;  // in a row
  bool hasComplained_ = false;
  std::vector<std::shared_ptr<void>> held_;

  // Used by the queue only.
  const std::shared_ptr<class SessionStore> store_;

  // Posted tasks hold a weak pointer to this, so that they do nothing once the journal is gone.
  const std::shared_ptr<SessionJournal*> self_;
};

}  // namespace tessum
