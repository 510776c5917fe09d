// A steady clock that follows a fake clock.

#pragma once

#include "core/platform/steady_clock.h"
#include "tests/support/fakes/fake_clock.h"

namespace tessum {

// Shows the seconds of `clock`, which must not be set back.
class FakeSteadyClock final : public SteadyClock {
 public:
  explicit FakeSteadyClock(const FakeClock& clock) : clock_(clock) {}

  [[nodiscard]] Moment now() const override { return {clock_.now().secondsSince1970}; }
  [[nodiscard]] double secondsAsleep() const override { return asleep_; }

  // Makes the computer sleep for `seconds` of the time by which the clock advances.
  void sleep(double seconds) { asleep_ += seconds; }

 private:
  const FakeClock& clock_;
  double asleep_ = 0;
};

}  // namespace tessum
