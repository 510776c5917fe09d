// Reports idle time on X11.

#pragma once

#include <memory>
#include <string>

#include "core/loop/system_main_loop.h"
#include "core/workspace/idle_source.h"

namespace tessum {

// Each has its own connection to `display`, such as ":0", and reports nothing more once that is
// lost. `loop` and `clock` must outlive it. Main thread only.

// Uses the server's idle counter and does not poll. Null when the server has no such counter.
[[nodiscard]] std::unique_ptr<IdleSource> openX11IdleCounter(SystemMainLoop& loop,
                                                             const SteadyClock& clock,
                                                             const std::string& display);

// Polls the screen saver extension every few seconds. Null when the server does not have it.
[[nodiscard]] std::unique_ptr<IdleSource> openX11IdlePoll(SystemMainLoop& loop,
                                                          const SteadyClock& clock,
                                                          const std::string& display);

}  // namespace tessum
