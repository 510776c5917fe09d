// Reads what an X11 window manager publishes.

#pragma once

#include <cstdint>

#include "core/workspace/x11/connection.h"

namespace tessum {

// The window manager writes the active window into a property of the root window. That property
// remains after the window manager exits, so another one names a window that the manager owns and
// that disappears with it. Not thread-safe.
class X11WindowManager {
 public:
  // `connection` must outlive this object.
  explicit X11WindowManager(X11Connection& connection) : connection_(connection) {}

  // Handles an event of `connection`. Returns whether another window may be active now.
  bool takeIn(const X11Event& event);

  // Queries the active window; 0 when there is none. One round trip, or two after takeIn() has seen
  // a new window manager.
  [[nodiscard]] std::uint32_t activeWindow();

  // Whether a window manager was running at the last activeWindow() and has not ended since.
  [[nodiscard]] bool isThere() const { return isThere_; }

 private:
  void check(std::uint32_t window, bool publishesActiveWindow);

  X11Connection& connection_;
  std::uint32_t window_ = 0;  // its check window, as of the last check
  bool isThere_ = false;
};

}  // namespace tessum
