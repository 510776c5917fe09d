// What the desktop that the program was started on tells.

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

// The desktop does not let its applications be seen; what() says why.
class WorkspaceUnavailable : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

// What a desktop has to say about itself.
struct WorkspaceNotice {
  std::string text;         // one sentence, for a person
  bool isFinal = false;     // the desktop is gone: no application will be seen any more
  std::string remedy = {};  // what the person can do, in a sentence; empty where that is nothing
};

using WorkspaceNoticeHandler = std::function<void(const WorkspaceNotice&)>;

struct DesktopSources {
  std::unique_ptr<FrontSource> front;  // never null
  std::unique_ptr<IdleSource> idle;    // null where the desktop does not tell
};

// Sources that `loop` drives and that tell times of `clock`; both must outlive them. `notice` is
// called before this or FrontSource::start() returns, or from the loop. Throws
// WorkspaceUnavailable. Main thread only.
[[nodiscard]] DesktopSources openDesktopSources(SystemMainLoop& loop, const SteadyClock& clock,
                                                WorkspaceNoticeHandler notice);

}  // namespace tessum
