// The sources of information about the desktop that the program runs on.

#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "core/loop/system_main_loop.h"
#include "core/platform/steady_clock.h"
#include "core/workspace/front_source.h"
#include "core/workspace/idle_source.h"

namespace tessum {

// The desktop does not let programs see its windows; what() says why.
class WorkspaceUnavailable : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

// A message about the desktop.
struct WorkspaceNotice {
  std::string text;         // one sentence, for a person
  bool isFinal = false;     // the desktop is gone: no application will be seen any more
  std::string remedy = {};  // what the person can do, in a sentence; empty where that is nothing
};

using WorkspaceNoticeHandler = std::function<void(const WorkspaceNotice&)>;

struct DesktopSources {
  std::unique_ptr<FrontSource> front;  // never null
  std::unique_ptr<IdleSource> idle;    // null where the desktop does not report input
};

// Opens the sources, driven by `loop` and timed by `clock`; both must outlive them. `notice` is
// called during this call, during FrontSource::start(), or from the loop. Throws
// WorkspaceUnavailable. Main thread only.
[[nodiscard]] DesktopSources openDesktopSources(SystemMainLoop& loop, const SteadyClock& clock,
                                                WorkspaceNoticeHandler notice);

}  // namespace tessum
