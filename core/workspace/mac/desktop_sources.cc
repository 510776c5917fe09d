#include "core/workspace/desktop_sources.h"

#include "core/workspace/mac/front_source.h"
#include "core/workspace/mac/idle_time.h"
#include "core/workspace/polling_idle_source.h"

namespace tessum {

// AppKit is available in every session, so there is never a notice.
DesktopSources openDesktopSources(SystemMainLoop& loop, const SteadyClock& clock,
                                  WorkspaceNoticeHandler) {
  return {openMacFrontSource(loop, clock),
          std::make_unique<PollingIdleSource>(loop, clock, [] { return secondsSinceInput(); })};
}

}  // namespace tessum
