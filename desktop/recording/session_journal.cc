#include "desktop/recording/session_journal.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <thread>
#include <utility>
#include <vector>

#include "core/store/database_error.h"
#include "core/store/session_store.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

// How many stored sessions to remember: a late report may end a session before they began.
constexpr std::size_t kRemembered = 1000;

constexpr std::size_t kMostAtOnce = 1000;

constexpr auto kRetryAtTheEnd = std::chrono::milliseconds(20);

}  // namespace

// A write in progress. `changes` belong to the queue until `result` is set.
struct SessionJournal::Batch {
  struct Result {
    std::vector<std::int64_t> rowIDs;
    std::optional<std::string> failure;
  };

  std::vector<std::int64_t> ids;
  std::vector<SessionChange> changes;
  std::promise<Result> promise;
  std::future<Result> result = promise.get_future();

  void run(SessionStore& store) {
    Result outcome;
    try {
      outcome.rowIDs = store.write(changes);
    } catch (const DatabaseError& error) {
      outcome.failure = error.description();
    }
    promise.set_value(std::move(outcome));
  }
};

SessionJournal::SessionJournal(std::string path, MainLoop& loop, SerialQueue& queue,
                               std::function<void(const std::string&)> say)
    : loop_(loop),
      queue_(queue),
      say_(std::move(say)),
      store_(std::make_shared<SessionStore>(std::move(path))),
      self_(std::make_shared<SessionJournal*>(this)) {}

SessionJournal::~SessionJournal() {
  if (retry_) loop_.invalidateTimer(*retry_);
}

std::int64_t SessionJournal::insert(const Activity& activity) {
  entries_.push_back({.id = ++lastID_, .rowID = {}, .session = activity, .isUnsaved = false});
  markUnsaved(entries_.back());
  return lastID_;
}

void SessionJournal::updateTitle(std::int64_t id, const std::string& title) {
  Entry* const entry = find(id);
  if (entry == nullptr || !entry->session) return;
  entry->session->title = title;
  markUnsaved(*entry);
}

void SessionJournal::updateEndTime(std::int64_t id, Date end) {
  Entry* const entry = find(id);
  if (entry == nullptr || !entry->session) return;
  if (secondsBetween(entry->session->startTime, end) < 0) return takeBack(end);
  entry->session->endTime = end;
  markUnsaved(*entry);
}

SessionJournal::Entry* SessionJournal::find(std::int64_t id) {
  const auto found =
      std::lower_bound(entries_.begin(), entries_.end(), id,
                       [](const Entry& entry, std::int64_t wanted) { return entry.id < wanted; });
  return found == entries_.end() || found->id != id ? nullptr : &*found;
}

// Shortens or deletes the latest sessions that reach beyond `end`.
void SessionJournal::takeBack(Date end) {
  for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
    if (!entry->session) continue;
    const auto& ended = entry->session->endTime;
    if (ended && secondsBetween(*ended, end) >= 0) return;
    if (secondsBetween(entry->session->startTime, end) < 0) {
      entry->session.reset();
    } else {
      entry->session->endTime = end;
    }
    markUnsaved(*entry);
  }
}

void SessionJournal::markUnsaved(Entry& entry) {
  entry.isInBatch = false;
  if (!std::exchange(entry.isUnsaved, true)) ++unsaved_;
  postWrite();
}

// All changes of one turn of the loop are written together: a session is stored with its title, in
// the same transaction as the end of the previous session.
void SessionJournal::postWrite() {
  if (retry_ || batch_ || std::exchange(isWritePosted_, true)) return;
  loop_.post([weak = std::weak_ptr(self_)] {
    const auto self = weak.lock();
    if (!self) return;
    (*self)->isWritePosted_ = false;
    (*self)->write();
  });
}

void SessionJournal::write() {
  if (batch_ || unsaved_ == 0) return;
  batch_ = std::make_shared<Batch>();
  for (Entry& entry : entries_) {
    if (!entry.isUnsaved) continue;
    if (batch_->ids.size() == kMostAtOnce) break;
    entry.isInBatch = true;
    batch_->ids.push_back(entry.id);
    batch_->changes.push_back({.rowID = entry.rowID, .session = entry.session});
  }
  queue_.post([batch = batch_, store = store_, &loop = loop_, weak = std::weak_ptr(self_)] {
    batch->run(*store);
    loop.post([weak] {
      if (const auto self = weak.lock()) (*self)->takeResult();
    });
  });
}

void SessionJournal::takeResult() {
  if (!batch_) return;  // finish() has taken it
  const auto batch = std::move(batch_);
  const Batch::Result result = batch->result.get();
  if (result.failure) return handleFailure(*result.failure);
  for (std::size_t i = 0; i < batch->ids.size(); ++i) {
    Entry* const entry = find(batch->ids[i]);
    if (entry == nullptr) continue;  // dropped meanwhile
    entry->rowID = result.rowIDs[i] == 0 ? std::nullopt : std::optional(result.rowIDs[i]);
    if (!std::exchange(entry->isInBatch, false)) continue;
    entry->isUnsaved = false;
    --unsaved_;
  }
  handleSuccess();
}

void SessionJournal::handleFailure(const std::string& reason) {
  ++failures_;
  if (!hasComplained_ && failures_ * kRetrySeconds >= kPatienceSeconds) {
    hasComplained_ = true;
    say_("The history cannot be written: " + reason +
         ". Sessions are kept in memory until it can.");
  }
  forgetOld();
  if (retry_) loop_.invalidateTimer(*retry_);
  retry_ = loop_.runAfter(kRetrySeconds, [this] {
    retry_.reset();
    write();
  });
}

void SessionJournal::handleSuccess() {
  failures_ = 0;
  if (std::exchange(hasComplained_, false)) {
    say_(lost_ == 0
             ? "The history can be written again; nothing was lost."
             : "The history can be written again; " +
                   counted(lost_, "session was", "sessions were") + " too many to keep, and lost.");
    lost_ = 0;
  }
  forgetOld();
  if (unsaved_ > 0) return postWrite();
  held_.clear();
}

void SessionJournal::holdUntilWritten(std::shared_ptr<void> token) {
  if (unsaved_ > 0) held_.push_back(std::move(token));
}

void SessionJournal::forgetOld() {
  const auto isGone = [](const Entry& entry) { return !entry.session && !entry.isUnsaved; };
  while (entries_.size() - unsaved_ > kRemembered && !entries_.front().isUnsaved) {
    entries_.pop_front();
  }
  std::erase_if(entries_, isGone);
  while (unsaved_ > kMostUnsaved) {
    const auto oldest = std::find_if(entries_.begin(), entries_.end(),
                                     [](const Entry& entry) { return entry.isUnsaved; });
    entries_.erase(oldest);
    --unsaved_;
    ++lost_;
  }
}

bool SessionJournal::finish(double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (true) {
    write();
    if (!batch_) return true;
    if (batch_->result.wait_until(deadline) != std::future_status::ready) break;
    takeResult();
    if (unsaved_ == 0) return true;
    if (std::chrono::steady_clock::now() >= deadline) break;
    std::this_thread::sleep_for(kRetryAtTheEnd);
  }
  say_(counted(unsaved_, "session") + " could not be written to the history, and lost.");
  return false;
}

}  // namespace tessum
