#include "desktop/recording/recording.h"

#include <utility>

namespace tessum {
namespace {

// Allows for the time between reading the two clocks.
constexpr double kShortestSleep = 1;  // seconds

}  // namespace

Recording::Recording(std::shared_ptr<SessionWriter> sessions, const Clock& wall,
                     const SteadyClock& steady, MainLoop& loop, const RecordingSettings& settings,
                     std::function<void()> onChange)
    : steady_(steady),
      timeline_(wall, steady),
      feed_(std::move(sessions)),
      sessions_(feed_, timeline_, loop, settings.titles),
      filter_(wall, loop,
              [this] {
                update(steady_.now());
                onChange_();
              }),
      onChange_(std::move(onChange)),
      away_(loop, steady, settings.awayAfter,
            {.onAway = [this](Moment since) { leave(since); },
             .onBack = [this](Moment when) { comeBack(when); }}),
      lastTick_(steady.now()),
      asleep_(steady.secondsAsleep()) {
  filter_.obey(settings.hide);
}

void Recording::obey(const RecordingSettings& settings) {
  filter_.obey(settings.hide);
  sessions_.setTitles(settings.titles);
  away_.setLimit(settings.awayAfter);
  update(steady_.now());
}

void Recording::pause(const std::optional<Pause>& pause) {
  filter_.pause(pause);
  update(steady_.now());
}

void Recording::show(const std::optional<Front>& front, Moment since) {
  front_ = front;
  update(since);
}

// Passes on what may be recorded since `since`. Hidden and visible time never share a session,
// because sessions exchange the time of short titles.
void Recording::update(Moment since) {
  followClock();
  auto [front, kept] = filter_.pass(front_);
  if (kept != std::exchange(kept_, kept)) sessions_.show(std::nullopt, since);
  if (away_.since()) front.reset();
  sessions_.show(front, since);
}

void Recording::leave(Moment since) {
  followClock();
  awaySince_ = timeline_.dateOf(since);
  sessions_.show(std::nullopt, since);
  onChange_();
}

void Recording::comeBack(Moment when) {
  followClock();
  awaySince_.reset();
  update(when);
  onChange_();
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
  update(now);
  sessions_.storeLatestTitle();
  lastTick_ = now;
}

// If the clock was set, ends the open session by the old time, so that no session ends before it
// began or is too long. Returns whether the clock was set.
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
