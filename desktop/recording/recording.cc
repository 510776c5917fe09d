#include "desktop/recording/recording.h"

#include <utility>

namespace tessum {
namespace {

// The clocks for this are read one after the other.
constexpr double kShortestSleep = 1;  // seconds

}  // namespace

Recording::Recording(std::shared_ptr<SessionWriter> sessions, const Clock& wall,
                     const SteadyClock& steady, MainLoop& loop, const RecordingSettings& settings,
                     std::function<void()> onAwayChanged)
    : steady_(steady),
      timeline_(wall, steady),
      feed_(std::move(sessions)),
      sessions_(feed_, timeline_, loop, settings.titles),
      onAwayChanged_(std::move(onAwayChanged)),
      away_(loop, steady, settings.awayAfter,
            {.onAway = [this](Moment since) { leave(since); },
             .onBack = [this](Moment when) { comeBack(when); }}),
      lastTick_(steady.now()),
      asleep_(steady.secondsAsleep()) {}

void Recording::show(const std::optional<Front>& front, Moment since) {
  followClock();
  front_ = front;
  if (!away_.since()) sessions_.show(front_, since);
}

void Recording::leave(Moment since) {
  followClock();
  awaySince_ = timeline_.dateOf(since);
  sessions_.show(std::nullopt, since);
  onAwayChanged_();
}

void Recording::comeBack(Moment when) {
  followClock();
  awaySince_.reset();
  sessions_.show(front_, when);
  onAwayChanged_();
}

void Recording::noteSleep(Moment when) {
  away_.noteSleep(when);
}

void Recording::noteWakeUp(Moment when) {
  asleep_ = steady_.secondsAsleep();
  lastTick_ = when;
  away_.noteWakeUp(when);
}

void Recording::tick() {
  const Moment now = steady_.now();
  if (steady_.secondsAsleep() - asleep_ >= kShortestSleep) {
    noteSleep(lastTick_);
    noteWakeUp(now);
  }
  if (followClock() && !away_.since()) sessions_.show(front_, now);
  sessions_.storeLatestTitle();
  lastTick_ = now;
}

// Ends the session that lasted while the clock was set by the time before, so that none ends before
// it began or lasts longer than it did. Whether the clock was set.
bool Recording::followClock() {
  if (!timeline_.wasSet()) return false;
  sessions_.show(std::nullopt, steady_.now());
  timeline_.adopt();
  return true;
}

void Recording::stop() {
  sessions_.show(std::nullopt, steady_.now());
}

std::optional<Date> Recording::awaySince() const {
  return awaySince_;
}

}  // namespace tessum
