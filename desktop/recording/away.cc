#include "desktop/recording/away.h"

#include <algorithm>
#include <utility>

namespace tessum {
namespace {

std::optional<Moment> earlier(std::optional<Moment> a, std::optional<Moment> b) {
  if (!a || !b) return a ? a : b;
  return a->seconds < b->seconds ? a : b;
}

}  // namespace

Away::Away(MainLoop& loop, const SteadyClock& clock, std::optional<double> seconds,
           Handlers handlers)
    : loop_(loop), clock_(clock), seconds_(seconds), handlers_(std::move(handlers)) {}

Away::~Away() {
  if (timer_) loop_.invalidateTimer(*timer_);
}

void Away::setLimit(std::optional<double> seconds) {
  if (seconds == seconds_) return;
  seconds_ = seconds;
  lastInput_.reset();
  update(clock_.now());
}

void Away::noteIdle(Moment lastInput) {
  lastInput_ = lastInput;
  update(clock_.now());
}

void Away::noteInput(Moment when) {
  lastInput_.reset();
  update(when);
}

void Away::noteLock(bool isLocked, Moment when) {
  if (isLocked == lockedSince_.has_value()) return;
  lockedSince_ = isLocked ? std::optional(when) : std::nullopt;
  update(when);
}

void Away::noteSleep(Moment when) {
  if (!asleepSince_) asleepSince_ = when;
  update(when);
}

void Away::noteWakeUp(Moment when) {
  asleepSince_.reset();
  update(when);
}

void Away::noteKeptAwake(bool isKeptAwake, Moment when) {
  if (isKeptAwake_ && !isKeptAwake) keptAwakeUntil_ = when;
  isKeptAwake_ = isKeptAwake;
  update(when);
}

// Since when there has been no input, if that is long enough. Otherwise sets a timer to check
// again.
std::optional<Moment> Away::untouchedSince(Moment now) {
  if (timer_) loop_.invalidateTimer(*timer_);
  timer_.reset();
  if (!seconds_ || !lastInput_ || isKeptAwake_) return std::nullopt;
  const Moment since{std::max(lastInput_->seconds, keptAwakeUntil_.seconds)};
  const double left = *seconds_ - secondsBetween(since, now);
  if (left <= 0 || since == *lastInput_) return since;
  timer_ = loop_.runAfter(left, [this] {
    timer_.reset();
    update(clock_.now());
  });
  return std::nullopt;
}

void Away::update(Moment when) {
  const auto since = earlier(earlier(lockedSince_, asleepSince_), untouchedSince(when));
  if (since.has_value() == awaySince_.has_value()) return;
  awaySince_ = since;
  if (since) {
    handlers_.onAway(*since);
  } else {
    handlers_.onBack(when);
  }
}

}  // namespace tessum
