// Reports what is in front on macOS.

#pragma once

#include <memory>

#include "core/loop/main_loop.h"
#include "core/workspace/front_source.h"

namespace tessum {

// Follows AppKit's activations, and polls the title every few seconds because its changes are not
// announced. `loop` and `clock` must outlive the source.
[[nodiscard]] std::unique_ptr<FrontSource> openMacFrontSource(MainLoop& loop,
                                                              const SteadyClock& clock);

}  // namespace tessum
