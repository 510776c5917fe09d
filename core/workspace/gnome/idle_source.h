// The absence of input on GNOME.

#pragma once

#include <memory>

#include "core/bus/bus.h"
#include "core/platform/steady_clock.h"
#include "core/workspace/idle_source.h"

namespace tessum {

// Has the compositor count, over `session`, and polls nothing. While it cannot be reached this
// tells nothing. `clock` must outlive it. Main thread only.
[[nodiscard]] std::unique_ptr<IdleSource> openGnomeIdleSource(const SteadyClock& clock,
                                                              std::shared_ptr<Bus> session);

}  // namespace tessum
