// Turns what the user has in front into sessions in the database.

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
// poll every 5 seconds writes the title of the focused window into it. Failures of the database are
// not reported; what could not be written is missing. Owned by the program that records. Main
// thread only.
class ActivityMonitor {
 public:
  // Does not start recording. The monitor shares `database`; the other arguments must outlive it.
  ActivityMonitor(std::shared_ptr<SessionWriter> database, const Clock& clock, Workspace& workspace,
                  MainLoop& loop);

  // Stops first.
  ~ActivityMonitor();
  ActivityMonitor(const ActivityMonitor&) = delete;
  ActivityMonitor& operator=(const ActivityMonitor&) = delete;

  // Starts recording with the application that is in front now. Call it once for each stop(): a
  // second call records everything twice, and the first call's registrations then last until the
  // workspace and the loop are destroyed.
  void start();

  // Stops recording and ends the open session. Does nothing when not recording.
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
  std::optional<std::string> lastTitle_;  // the title at the last poll

  const Clock& clock_;
  Workspace& workspace_;
  MainLoop& loop_;

  // Registered handlers hold a weak pointer to this, so that they do nothing once the monitor is
  // gone.
  const std::shared_ptr<ActivityMonitor*> self_;
};

}  // namespace tessum
