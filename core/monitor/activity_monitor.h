// Turns what the user has in front into sessions of the store.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "core/loop/main_loop.h"
#include "core/platform/clock.h"
#include "core/store/database.h"
#include "core/workspace/workspace.h"

namespace tessum {

// Each activation ends the open session and begins one for the application that became active; a
// poll every 5 seconds writes the title of the focused window into it. A store that fails is not
// reported: what could not be written is missing. Belongs to the program that records. Main
// thread only.
class ActivityMonitor {
 public:
  // Starts nothing. The monitor shares `database`; the rest must outlive it.
  ActivityMonitor(std::shared_ptr<SessionWriter> database, const Clock& clock, Workspace& workspace,
                  MainLoop& loop);

  // Stops first.
  ~ActivityMonitor();
  ActivityMonitor(const ActivityMonitor&) = delete;
  ActivityMonitor& operator=(const ActivityMonitor&) = delete;

  // Begins to record, with the application that is in front now. Meant to be called once for each
  // stop(): a second call records everything twice, and what the first one registered then goes on
  // until the workspace and the loop are gone.
  void start();

  // Ends recording and closes the open session. Nothing happens when nothing is recorded.
  void stop();

 private:
  void handleActivation(const std::optional<RunningApplication>& application);
  void updateCurrentTitle();
  [[nodiscard]] std::optional<std::string> windowTitle(const RunningApplication& application);
  void endCurrentActivity();

  const std::shared_ptr<SessionWriter> database_;
  std::optional<std::int64_t> currentActivityID_;  // the open session
  std::optional<Workspace::ObserverToken> observer_;
  std::optional<MainLoop::TimerToken> titlePollTimer_;
  std::optional<std::string> lastTitle_;  // what the poll saw last

  const Clock& clock_;
  Workspace& workspace_;
  MainLoop& loop_;

  // What is registered holds this weakly: once it is gone, so is the monitor.
  const std::shared_ptr<ActivityMonitor*> self_;
};

}  // namespace tessum
