// Idle time on systems that report it only when asked.

#pragma once

#include <functional>
#include <optional>

#include "core/loop/main_loop.h"
#include "core/workspace/idle_source.h"

namespace tessum {

// Polls every few seconds while watched, so it reports up to that much late. If there are several
// inputs between two polls, onActive gets the last. Main thread only.
class PollingIdleSource final : public IdleSource {
 public:
  // Returns the seconds since the last input; absent when they are no longer known.
  using SecondsSinceInput = std::function<std::optional<double>()>;

  static constexpr double kPollSeconds = 5.0;

  // `loop` and `clock` must outlive this object.
  PollingIdleSource(MainLoop& loop, const SteadyClock& clock, SecondsSinceInput secondsSinceInput);
  ~PollingIdleSource() override;
  PollingIdleSource(const PollingIdleSource&) = delete;
  PollingIdleSource& operator=(const PollingIdleSource&) = delete;

  void watch(double seconds, Handlers handlers) override;

 private:
  void poll(double threshold);
  void stop();

  MainLoop& loop_;
  const SteadyClock& clock_;
  const SecondsSinceInput secondsSinceInput_;
  Handlers handlers_;
  std::optional<MainLoop::TimerToken> timer_;
  bool isIdle_ = false;
};

}  // namespace tessum
