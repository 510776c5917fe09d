// Filters out what must not be recorded.

#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "core/loop/main_loop.h"
#include "core/platform/clock.h"
#include "core/workspace/front_source.h"
#include "desktop/settings/pause.h"
#include "desktop/settings/rules.h"

namespace tessum {

// Applies the rules of the settings and the pause at the present time. Main thread only.
class FrontFilter {
 public:
  // Calls `onChange` from `loop` when the passage of time may change the result: a schedule begins
  // or ends, or the pause ends. `wall` and `loop` must outlive the object.
  FrontFilter(const Clock& wall, MainLoop& loop, std::function<void()> onChange);
  ~FrontFilter();
  FrontFilter(const FrontFilter&) = delete;
  FrontFilter& operator=(const FrontFilter&) = delete;

  // These do not call `onChange`.
  void obey(std::vector<HideRule> rules);
  void pause(const std::optional<Pause>& pause) { pause_ = pause; }

  [[nodiscard]] bool isPaused() const { return isPausedAt(wall_.now()); }

  struct Passed {
    std::optional<Front> front;
    Kept kept = Kept::all;  // how much of the original
  };

  // What may be recorded of `front` now.
  [[nodiscard]] Passed pass(const std::optional<Front>& front);

 private:
  [[nodiscard]] bool isPausedAt(Date now) const;
  void waitForEdge(Date now);

  const Clock& wall_;
  MainLoop& loop_;
  const std::function<void()> onChange_;
  std::vector<HideRule> rules_;
  std::optional<Pause> pause_;
  std::optional<MainLoop::TimerToken> timer_;
};

}  // namespace tessum
