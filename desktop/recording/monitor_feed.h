// What the monitor is shown of the desktop.
//
// The monitor follows a desktop by itself: it takes the clock's time when it is told of an
// activation, and looks for a title every five seconds. The recorder knows more: when something
// happened, which title belongs to it, and what is not to be recorded at all. So the monitor gets a
// workspace, a clock and a loop that show it just that, one step after another.

#pragma once

#include <optional>
#include <string>

#include "core/loop/main_loop.h"
#include "core/monitor/activity_monitor.h"
#include "core/platform/clock.h"
#include "core/workspace/workspace.h"

namespace tessum {

// The monitor that writes to `sessions`, with the desktop in front of it. Main thread only.
class MonitorFeed {
 public:
  explicit MonitorFeed(std::shared_ptr<SessionWriter> sessions);

  // Ends the session before, and begins one. A title is never empty.
  void begin(const RunningApplication& application, const std::optional<std::string>& title,
             Date when);

  // Gives the open session another title. There is no absent one: a session keeps what it has.
  void retitle(const std::string& title);

  // Ends the open session, if there is one.
  void end(Date when);

 private:
  // The clock stands still between two steps.
  struct StoppedClock final : Clock {
    [[nodiscard]] Date now() const override { return date; }
    Date date;
  };

  struct ShownWorkspace final : Workspace {
    ObserverToken addActivationObserver(ActivationHandler handler) override;
    void removeObserver(ObserverToken) override { observer = nullptr; }
    std::optional<RunningApplication> frontmostApplication() override { return front; }
    std::optional<std::string> focusedWindowTitle(const RunningApplication&) override {
      return title;
    }

    ActivationHandler observer;
    std::optional<RunningApplication> front;
    std::optional<std::string> title;
  };

  // Keeps the task of the one timer, the look for a title, which is run when there is one.
  struct TitleLoop final : MainLoop {
    void post(Task task) override { task(); }
    TimerToken startTimer(double, Task task) override;
    TimerToken runAfter(double seconds, Task task) override { return startTimer(seconds, task); }
    void invalidateTimer(TimerToken) override { lookForTitle = nullptr; }
    WatchToken watchReadable(int, Task) override { return {}; }
    void unwatch(WatchToken) override {}

    Task lookForTitle;
  };

  StoppedClock clock_;
  ShownWorkspace workspace_;
  TitleLoop loop_;
  ActivityMonitor monitor_;
};

}  // namespace tessum
