#include "core/workspace/polling_idle_source.h"

#include <utility>

namespace tessum {

PollingIdleSource::PollingIdleSource(MainLoop& loop, const SteadyClock& clock,
                                     SecondsSinceInput secondsSinceInput)
    : loop_(loop), clock_(clock), secondsSinceInput_(std::move(secondsSinceInput)) {}

PollingIdleSource::~PollingIdleSource() {
  stop();
}

void PollingIdleSource::watch(double seconds, Handlers handlers) {
  stop();
  handlers_ = std::move(handlers);
  isIdle_ = false;
  timer_ = loop_.startTimer(kPollSeconds, [this, seconds] { poll(seconds); });
}

void PollingIdleSource::poll(double threshold) {
  const auto idle = secondsSinceInput_();
  if (!idle) {
    stop();
    return;
  }
  if (isIdle_ == (*idle >= threshold)) return;
  isIdle_ = !isIdle_;
  const auto handler = isIdle_ ? handlers_.onIdle : handlers_.onActive;  // it may call watch()
  handler(movedBy(clock_.now(), -*idle));
}

void PollingIdleSource::stop() {
  if (timer_) loop_.invalidateTimer(*timer_);
  timer_.reset();
}

}  // namespace tessum
