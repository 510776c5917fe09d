// Feeds the monitor with a filtered view of the desktop.
//
// The monitor follows a desktop by itself: it reads the clock at each activation, and polls the
// title every five seconds. The recorder knows more: when something happened, which title belongs
// to it, and what must not be recorded. So it gives the monitor a workspace, a clock and a loop
// that show exactly that, one step after another.

#pragma once

#include <optional>
#include <string>

#include "core/loop/main_loop.h"
#include "core/monitor/activity_monitor.h"
#include "core/platform/clock.h"
#include "core/workspace/workspace.h"

namespace tessum {

// A monitor that writes to `sessions`, and the desktop it sees. Main thread only.
class MonitorFeed {
 public:
  explicit MonitorFeed(std::shared_ptr<SessionWriter> sessions);

  // Ends the open session, if any, and begins another. A title is never empty.
  void begin(const RunningApplication& application, const std::optional<std::string>& title,
             Date when);

  // Changes the open session's title. A session cannot lose its title.
  void retitle(const std::string& title);

  // Ends the open session, if any.
  void end(Date when);

 private:
  // The clock does not advance between two steps.
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

  // Keeps the task of the only timer, the poll for a title, and runs it when there is a title.
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
