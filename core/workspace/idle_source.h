// Reports when the user stops and resumes input.

#pragma once

#include <functional>

#include "core/platform/steady_clock.h"

namespace tessum {

// Implemented once for each kind of desktop. Main thread only.
class IdleSource {
 public:
  struct Handlers {
    std::function<void(Moment lastInput)> onIdle;
    std::function<void(Moment firstInput)> onActive;  // the first input after onIdle
  };

  virtual ~IdleSource() = default;

  // Calls `handlers` from the main loop: onIdle once there has been no input for `seconds`, even if
  // that is already so, then onActive at the next input, and so on. Replaces an earlier watch,
  // whose handlers are not called again.
  virtual void watch(double seconds, Handlers handlers) = 0;
};

}  // namespace tessum
