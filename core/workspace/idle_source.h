// Whether anybody touches the computer.

#pragma once

#include <functional>

#include "core/platform/steady_clock.h"

namespace tessum {

// One desktop's way of telling. A body exists for each. Main thread only.
class IdleSource {
 public:
  struct Handlers {
    std::function<void(Moment lastInput)> onIdle;
    std::function<void(Moment firstInput)> onActive;  // the first input after onIdle
  };

  virtual ~IdleSource() = default;

  // Calls `handlers` from the main loop: onIdle when there has been no input for `seconds`, also
  // when that is so already, and onActive at the next input; then again. Replaces an earlier watch,
  // whose handlers are not called again.
  virtual void watch(double seconds, Handlers handlers) = 0;
};

}  // namespace tessum
