// Turns the active windows of a Linux desktop, one after another, into what is in front.

#pragma once

#include <optional>

#include "core/loop/main_loop.h"
#include "core/workspace/front_source.h"
#include "core/workspace/linux/front_window.h"

namespace tessum {

// Between two windows most window managers show for a moment that none is active, and while they
// restart they show that, or windows that say nothing about themselves. So neither counts until it
// has lasted longer than such a moment; it then counts from its beginning. Main thread only.
class FrontTracker {
 public:
  static constexpr double kMomentWithoutWindow = 0.5;  // seconds

  // `handler` gets each change of application or title, the first at the first show(). `loop` must
  // outlive this object.
  FrontTracker(MainLoop& loop, FrontSource::Handler handler);
  ~FrontTracker();
  FrontTracker(const FrontTracker&) = delete;
  FrontTracker& operator=(const FrontTracker&) = delete;

  // The window that is active since then, with the title that it has; absent when none is. Not
  // before the moment of the last call.
  void show(const std::optional<FrontWindow>& window, Moment since);

  // No window will be active any more: what is in front is left at once.
  void clear(Moment since);

 private:
  // A window that says nothing about itself, or none.
  struct Unknown {
    std::optional<FrontWindow> window;
    Moment since;
  };

  [[nodiscard]] bool isToldAs(const FrontWindow& window) const;
  void wait(const std::optional<FrontWindow>& window, Moment since);
  void startTimer();
  void stopWaiting();
  void endWaiting();
  void tell(const FrontWindow& window, Moment since);
  void tellNothing(Moment since);

  MainLoop& loop_;
  const FrontSource::Handler handler_;
  bool hasTold_ = false;
  std::optional<Front> front_;  // as it was told last
  ApplicationKey key_;          // of that

  std::optional<MainLoop::TimerToken> timer_;  // runs while it is unclear whether anything is left
  Moment awaySince_;                           // when that began
  Unknown latest_;
};

}  // namespace tessum
