// The absence of input on a Wayland desktop.

#pragma once

#include <memory>

#include "core/platform/steady_clock.h"
#include "core/workspace/idle_source.h"
#include "core/workspace/wayland/connection.h"

namespace tessum {

// The compositor counts, so nothing is polled; once the connection is lost, nothing more is
// reported. The time without input before watch() does not count. Null where the compositor does
// not report input. `clock` must outlive it. Main thread only.
[[nodiscard]] std::unique_ptr<IdleSource> openWaylandIdleSource(
    const SteadyClock& clock, std::shared_ptr<WaylandConnection> connection);

}  // namespace tessum
