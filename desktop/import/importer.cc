#include "desktop/import/importer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>
#include <utility>

#include "core/store/lock_patience.h"
#include "desktop/usage/category_finder.h"

namespace tessum {
namespace {

// Programs that wait for a lock look again after 25 milliseconds at first, so they find it free if
// it stays free for longer.
constexpr std::chrono::duration<double> kWanted{0.030};
constexpr std::chrono::duration<double> kLongestPause{0.2};

// How long somebody else may keep the lock.
constexpr double kLongestLockSeconds = 30;

constexpr std::size_t kFewestSessions = 100;
constexpr std::size_t kMostSessions = 10'000;

std::string secondText(Date date) {
  return std::to_string(static_cast<std::int64_t>(std::floor(date.secondsSince1970)));
}

}  // namespace

Importer::Importer(History* history, bool isTrial, std::function<void(std::int64_t)> onProgress)
    : history_(history),
      isTrial_(isTrial),
      onProgress_(std::move(onProgress)),
      mostSessions_(kFewestSessions) {}

template <typename Record>
void Importer::count(const Record& record, const std::string& key, std::int64_t& added) {
  const bool isKnown = (history_ != nullptr && history_->hasLike(record)) ||
                       !counted_.insert(std::hash<std::string>()(key)).second;
  (isKnown ? counts_.known : added) += 1;
}

void Importer::add(const Activity& session) {
  constexpr std::int64_t kBetweenProgress = 10'000;
  if (++records_ % kBetweenProgress == 0) onProgress_(records_);
  if (isTrial_) {
    Activity nameless = session;
    nameless.bundleID.reset();
    count(session, secondText(session.startTime) + '\0' + windowKey(nameless), counts_.sessions);
    return;
  }
  sessions_.push_back(session);
  if (sessions_.size() >= mostSessions_) store();
}

void Importer::add(const Annotation& note) {
  ++records_;
  if (isTrial_) return count(note, secondText(note.startedAt) + '\n' + note.text, counts_.notes);
  notes_.push_back(note);
  if (notes_.size() >= kFewestSessions) store();
}

// Stores `records`, and counts what was there already.
template <typename Record>
void Importer::storeAll(std::vector<Record>& records, std::int64_t& added) {
  if (records.empty()) return;
  const std::int64_t count =
      outlastingLocks(kLongestLockSeconds, [&] { return history_->addMissing(records); });
  added += count;
  counts_.known += static_cast<std::int64_t>(records.size()) - count;
  records.clear();
}

void Importer::store() {
  using Steady = std::chrono::steady_clock;
  const auto size = static_cast<double>(sessions_.size());
  const auto start = Steady::now();
  storeAll(sessions_, counts_.sessions);
  storeAll(notes_, counts_.notes);
  const std::chrono::duration<double> held = Steady::now() - start;
  // The next piece should take as long as is wanted; a disk may be slow at times.
  const double rate = size / std::max(held.count(), 1e-6);
  mostSessions_ = std::clamp(static_cast<std::size_t>(rate * kWanted.count()), kFewestSessions,
                             std::min(kMostSessions, mostSessions_ * 2));
  std::this_thread::sleep_for(std::clamp(held, kWanted, kLongestPause));
}

ImportCounts Importer::finish() {
  if (!isTrial_) store();
  return std::exchange(counts_, {});
}

}  // namespace tessum
