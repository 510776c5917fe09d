// What the window manager of an X11 desktop publishes.

#pragma once

#include <cstdint>

#include "core/workspace/x11/connection.h"

namespace tessum {

// The window manager writes the active window into a property of the root window. When it ends it
// leaves that behind, so another property names a window of its own that goes with it. Not
// thread-safe.
class X11WindowManager {
 public:
  // `connection` must outlive this object.
  explicit X11WindowManager(X11Connection& connection) : connection_(connection) {}

  // Takes in an event of `connection`. Returns whether another window may be active now.
  bool takeIn(const X11Event& event);

  // Asks for the active window; 0 when none is. One round trip, or two after takeIn() has met a new
  // window manager.
  [[nodiscard]] std::uint32_t activeWindow();

  // Whether a window manager was there at the last activeWindow(), and has not ended since.
  [[nodiscard]] bool isThere() const { return isThere_; }

 private:
  void check(std::uint32_t window, bool publishesActiveWindow);

  X11Connection& connection_;
  std::uint32_t window_ = 0;  // its own, checked last
  bool isThere_ = false;
};

}  // namespace tessum
