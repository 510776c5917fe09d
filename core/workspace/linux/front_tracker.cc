#include "core/workspace/linux/front_tracker.h"

#include <utility>

namespace tessum {

FrontTracker::FrontTracker(MainLoop& loop, Changed changed)
    : loop_(loop), changed_(std::move(changed)) {}

FrontTracker::~FrontTracker() {
  stopWaiting();
}

void FrontTracker::show(const std::optional<FrontWindow>& window) {
  if (!window) {
    if (current_ && !moment_) {
      moment_ = loop_.startTimer(kMomentWithoutWindow, [this] { clear(); });
    }
    return;
  }
  stopWaiting();
  if (current_ && current_->key == window->key) {
    current_->window = window->window;
    return;
  }
  current_ = window;
  changed_(window->application);
}

void FrontTracker::clear() {
  stopWaiting();
  if (!current_) return;
  current_.reset();
  changed_(std::nullopt);
}

void FrontTracker::stopWaiting() {
  if (moment_) loop_.invalidateTimer(*moment_);
  moment_.reset();
}

}  // namespace tessum
