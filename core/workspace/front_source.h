// What the user has in front, told as it changes.

#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/platform/steady_clock.h"
#include "core/workspace/workspace.h"

namespace tessum {

// The application in front and the title of its focused window.
struct Front {
  RunningApplication application;
  std::optional<std::string> title;  // never empty; absent where the desktop does not tell

  friend bool operator==(const Front&, const Front&) = default;
};

// One desktop's way of telling. A body exists for each. Main thread only.
class FrontSource {
 public:
  // Gets what is in front, and since when; absent when nothing is. The moments never go back.
  using Handler = std::function<void(const std::optional<Front>& front, Moment since)>;

  virtual ~FrontSource() = default;

  // Calls `handler` with what is in front now, before this returns, and then from the main loop at
  // each change of application, identifier or title. Called once.
  virtual void start(Handler handler) = 0;

  // How the desktop tells, for a person; for example "X11".
  [[nodiscard]] virtual std::string way() const = 0;
};

}  // namespace tessum
