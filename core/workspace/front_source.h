// Reports the window in front as it changes.

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
  std::optional<std::string> title;  // never empty; absent when the desktop does not report it

  friend bool operator==(const Front&, const Front&) = default;
};

// Implemented once for each kind of desktop. Main thread only.
class FrontSource {
 public:
  // Receives what is in front, absent when nothing is, and since when. The moments never go back.
  using Handler = std::function<void(const std::optional<Front>& front, Moment since)>;

  virtual ~FrontSource() = default;

  // Calls `handler` with what is in front before this returns, and then from the main loop each
  // time the application, identifier or title changes. Call once.
  virtual void start(Handler handler) = 0;

  // The source's name for a person, such as "X11".
  [[nodiscard]] virtual std::string way() const = 0;
};

}  // namespace tessum
