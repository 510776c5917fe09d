#include "core/workspace/x11/window_manager.h"

namespace tessum {
namespace {

std::uint32_t numberOf(const std::optional<X11Property>& property) {
  return property ? property->number().value_or(0) : 0;
}

}  // namespace

bool X11WindowManager::takeIn(const X11Event& event) {
  const auto& atoms = connection_.atoms();
  switch (event.kind) {
    case X11Event::Kind::propertyChanged:
      if (event.window != connection_.rootWindow()) return false;
      if (event.property == atoms.windowManagerCheck) window_ = 0;
      return event.property == atoms.activeWindow || event.property == atoms.windowManagerCheck;
    case X11Event::Kind::windowDestroyed:
      if (window_ == 0 || event.window != window_) return false;
      isThere_ = false;
      return true;
    case X11Event::Kind::other:
      break;
  }
  return false;
}

// The root window and the window manager's own window belong to no application. They must also stay
// watched, while an active window is unwatched once another takes its place.
std::uint32_t X11WindowManager::activeWindow() {
  const auto& atoms = connection_.atoms();
  const auto found = connection_.properties(connection_.rootWindow(),
                                            {atoms.activeWindow, atoms.windowManagerCheck});
  if (!found) return 0;
  const auto& active = (*found)[0];
  check(numberOf((*found)[1]), active.has_value());
  const std::uint32_t window = numberOf(active);
  if (!isThere_ || window == connection_.rootWindow() || window == window_) return 0;
  return window;
}

// Some window managers have no check window; they count as running while they publish.
void X11WindowManager::check(std::uint32_t window, bool publishesActiveWindow) {
  if (window == 0) {
    window_ = 0;
    isThere_ = publishesActiveWindow;
    return;
  }
  if (window == window_) return;
  window_ = window;
  connection_.watchEnd(window);
  const auto found = connection_.properties(window, {connection_.atoms().windowManagerCheck});
  isThere_ = found && numberOf((*found)[0]) == window;
}

}  // namespace tessum
