// The present moment.

#pragma once

#include "core/base/date.h"

namespace tessum {

// Any thread.
class Clock {
 public:
  virtual ~Clock() = default;

  // The present moment, with its fraction of a second.
  [[nodiscard]] virtual Date now() const = 0;
};

// The computer's own clock.
class SystemClock final : public Clock {
 public:
  [[nodiscard]] Date now() const override;
};

}  // namespace tessum
