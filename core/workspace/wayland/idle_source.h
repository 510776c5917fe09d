// The absence of input on a Wayland desktop.

#pragma once

#include <memory>

#include "core/platform/steady_clock.h"
#include "core/workspace/idle_source.h"
#include "core/workspace/wayland/connection.h"

namespace tessum {

// Has the compositor count, and polls nothing; once the connection is lost it tells nothing more.
// The time without input before watch() does not count. Null where the compositor does not tell.
// `clock` must outlive it. Main thread only.
[[nodiscard]] std::unique_ptr<IdleSource> openWaylandIdleSource(
    const SteadyClock& clock, std::shared_ptr<WaylandConnection> connection);

}  // namespace tessum
