// A clock that a test sets.

#pragma once

#include "core/platform/clock.h"

namespace tessum {

class FakeClock final : public Clock {
 public:
  explicit FakeClock(Date date = {}) : now_(date) {}

  [[nodiscard]] Date now() const override { return now_; }

  void set(Date date) { now_ = date; }
  void advance(double seconds) { now_ = movedBy(now_, seconds); }

 private:
  Date now_;
};

}  // namespace tessum
