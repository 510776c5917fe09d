// Turns the active windows that an X11 desktop shows, one after another, into activations.

#pragma once

#include <functional>
#include <optional>

#include "core/loop/main_loop.h"
#include "core/workspace/linux/front_window.h"

namespace tessum {

// Between two windows most window managers show for a moment that none is active, and for longer
// while they restart. So an application counts as left without a successor only when that lasts
// longer than such a moment. Main thread only.
class FrontTracker {
 public:
  using Changed = std::function<void(const std::optional<RunningApplication>&)>;

  static constexpr double kMomentWithoutWindow = 0.5;  // seconds

  // `changed` gets each application that became active, and none when none is any more. `loop`
  // must outlive this object.
  FrontTracker(MainLoop& loop, Changed changed);
  ~FrontTracker();
  FrontTracker(const FrontTracker&) = delete;
  FrontTracker& operator=(const FrontTracker&) = delete;

  // The window that is active now; absent when none is.
  void show(const std::optional<FrontWindow>& window);

  // No window will be active any more: what is in front is left at once.
  void clear();

  // The active window of the application last told; absent when none is in front.
  [[nodiscard]] const std::optional<FrontWindow>& current() const { return current_; }

 private:
  void stopWaiting();

  MainLoop& loop_;
  const Changed changed_;
  std::optional<FrontWindow> current_;
  std::optional<MainLoop::TimerToken> moment_;
};

}  // namespace tessum
