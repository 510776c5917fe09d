// Turns a sequence of active windows of a Linux desktop into what is in front.

#pragma once

#include <optional>

#include "core/loop/main_loop.h"
#include "core/workspace/front_source.h"
#include "core/workspace/linux/front_window.h"

namespace tessum {

// Most window managers briefly report no active window between two windows; while they restart they
// report none, or windows without properties. So neither counts until it has lasted longer than
// that; it then counts from its beginning. Main thread only.
class FrontTracker {
 public:
  static constexpr double kMomentWithoutWindow = 0.5;  // seconds

  // `handler` receives each change of application or title, beginning with the first show(). `loop`
  // must outlive this object.
  FrontTracker(MainLoop& loop, FrontSource::Handler handler);
  ~FrontTracker();
  FrontTracker(const FrontTracker&) = delete;
  FrontTracker& operator=(const FrontTracker&) = delete;

  // Reports the active window and its title, absent when none is active, and since when: not before
  // the moment of the last call.
  void show(const std::optional<FrontWindow>& window, Moment since);

  // No window will become active any more: what is in front ends at once.
  void clear(Moment since);

 private:
  // No window, or one that does not identify its application.
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
  std::optional<Front> front_;  // as last reported
  ApplicationKey key_;          // of front_

  std::optional<MainLoop::TimerToken> timer_;  // runs until it is clear what is in front
  Moment awaySince_;                           // when timer_'s wait began
  Unknown latest_;
};

}  // namespace tessum
