// The wish of the user or the system that the program should end.

#pragma once

#include <functional>

#include "core/loop/system_main_loop.h"
#include "core/platform/descriptor.h"

namespace tessum {

// While it lives, SIGINT, SIGTERM and SIGHUP do not end the process but run a task. At most one
// object at a time. Main thread only.
class TerminationSignals {
 public:
  // `task` runs on `loop`, which must outlive this object, once for one or more signals. Throws
  // std::system_error when the system has no descriptors left.
  TerminationSignals(SystemMainLoop& loop, std::function<void()> task);

  // Gives the signals their usual effect again.
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  SystemMainLoop& loop_;
  Descriptor readEnd_;
  Descriptor writeEnd_;
  SystemMainLoop::WatchToken watch_{};
};

}  // namespace tessum
