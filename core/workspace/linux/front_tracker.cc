#include "core/workspace/linux/front_tracker.h"

#include <utility>

namespace tessum {

FrontTracker::FrontTracker(MainLoop& loop, FrontSource::Handler handler)
    : loop_(loop), handler_(std::move(handler)) {}

FrontTracker::~FrontTracker() {
  stopWaiting();
}

void FrontTracker::show(const std::optional<FrontWindow>& window, Moment since) {
  if (window && (!window->isAnonymous() || isToldAs(*window))) {
    stopWaiting();
    tell(*window, since);
    return;
  }
  if (!hasTold_) tellNothing(since);
  wait(window, since);
}

void FrontTracker::clear(Moment since) {
  const Moment left = timer_ ? awaySince_ : since;
  stopWaiting();
  if (front_) tellNothing(left);
}

bool FrontTracker::isToldAs(const FrontWindow& window) const {
  return front_ && key_ == window.key;
}

void FrontTracker::wait(const std::optional<FrontWindow>& window, Moment since) {
  if (!timer_) {
    if (!front_ && !window) return;
    awaySince_ = since;
    latest_ = {window, since};
    startTimer();
    return;
  }
  const bool isSameWindow = window && latest_.window && window->key == latest_.window->key;
  latest_ = {window, isSameWindow ? latest_.since : since};
}

void FrontTracker::startTimer() {
  timer_ = loop_.runAfter(kMomentWithoutWindow, [this] { endWaiting(); });
}

void FrontTracker::stopWaiting() {
  if (timer_) loop_.invalidateTimer(*timer_);
  timer_.reset();
}

// A window that came later has not lasted long enough: nothing is in front before it, and its own
// delay starts.
void FrontTracker::endWaiting() {
  timer_.reset();
  if (latest_.window && latest_.since == awaySince_) {
    tell(*latest_.window, latest_.since);
    return;
  }
  if (front_) tellNothing(awaySince_);
  if (!latest_.window) return;
  awaySince_ = latest_.since;
  startTimer();
}

void FrontTracker::tell(const FrontWindow& window, Moment since) {
  Front front{window.application, window.title};
  if (isToldAs(window)) front.application = front_->application;
  const bool isNews = !isToldAs(window) || front_ != front;
  key_ = window.key;
  front_ = std::move(front);
  hasTold_ = true;
  if (isNews) handler_(front_, since);
}

void FrontTracker::tellNothing(Moment since) {
  front_.reset();
  hasTold_ = true;
  handler_(std::nullopt, since);
}

}  // namespace tessum
