// The recording program: what is in front goes into the store until it is told to end.

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/loop/system_main_loop.h"
#include "core/loop/termination_signals.h"
#include "core/monitor/activity_monitor.h"
#include "core/platform/file_lock.h"
#include "core/store/database.h"
#include "core/workspace/system_workspace.h"
#include "desktop/command.h"
#include "desktop/recording/http_endpoint.h"
#include "desktop/update/updater.h"

namespace tessum {

// The parts of the program, in the order in which they need each other; other parts that run
// beside the monitor join them here. Main thread only.
class Recorder {
 public:
  // Creates the data folder and the store where they are missing. Throws std::system_error,
  // std::runtime_error when another recorder uses the data folder, WorkspaceUnavailable and
  // DatabaseError.
  explicit Recorder(const Host& host);

  // Looks for a newer version, now and every six hours while it records, and says in one line when
  // one appears.
  void watchForReleases();

  // Also answers assistants over HTTP, with a connection of its own to the store, and prints where.
  // Throws what HTTPEndpoint throws.
  void serveHTTP(const Host& host);

  // Records until SIGINT, SIGTERM or SIGHUP, or until the desktop goes away, and closes the open
  // session. Returns the exit status.
  [[nodiscard]] int run();

 private:
  void handle(const WorkspaceNotice& notice);

  const Locations& locations_;
  const std::string folder_;
  FileLock lock_;
  SystemMainLoop loop_;
  TerminationSignals signals_;
  std::shared_ptr<Database> database_;
  std::unique_ptr<Workspace> workspace_;
  ActivityMonitor monitor_;
  std::optional<HTTPEndpoint> endpoint_;
  std::optional<Updater> updater_;
  int status_ = kSuccess;
};

}  // namespace tessum
