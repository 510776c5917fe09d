// The absence of input on an X11 desktop.

#pragma once

#include <memory>
#include <string>

#include "core/loop/system_main_loop.h"
#include "core/workspace/idle_source.h"

namespace tessum {

// Each has a connection of its own to `display`, such as ":0", and once that is lost it tells
// nothing more. `loop` and `clock` must outlive it. Main thread only.

// Has the server count, and polls nothing. Null where the server does not count the time without
// input.
[[nodiscard]] std::unique_ptr<IdleSource> openX11IdleCounter(SystemMainLoop& loop,
                                                             const SteadyClock& clock,
                                                             const std::string& display);

// Asks the screen saver every few seconds. Null where the server has none.
[[nodiscard]] std::unique_ptr<IdleSource> openX11IdlePoll(SystemMainLoop& loop,
                                                          const SteadyClock& clock,
                                                          const std::string& display);

}  // namespace tessum
