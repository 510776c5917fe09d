// Requests by the user or the system to end the program.

#pragma once

#include <functional>
#include <vector>

#include "core/loop/system_main_loop.h"
#include "core/platform/descriptor.h"

namespace tessum {

// While it lives, SIGINT, SIGTERM and SIGHUP do not end the process but run a task. One that the
// process was started to ignore, as nohup does it with SIGHUP, stays ignored. At most one object at
// a time. Main thread only.
class TerminationSignals {
 public:
  // Runs `task` on `loop`, which must outlive this object, once for one or more signals. Throws
  // std::system_error when no descriptor is available.
  TerminationSignals(SystemMainLoop& loop, std::function<void()> task);

  // Gives the signals the effect again that they had before.
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  SystemMainLoop& loop_;
  Pipe pipe_;
  SystemMainLoop::WatchToken watch_{};
  std::vector<int> taken_;
};

}  // namespace tessum
