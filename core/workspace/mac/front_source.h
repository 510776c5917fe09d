// What is in front on macOS.

#pragma once

#include <memory>

#include "core/loop/main_loop.h"
#include "core/workspace/front_source.h"

namespace tessum {

// Tells of activations as AppKit does, and looks for another title every few seconds: an
// application does not tell of one. `loop` and `clock` must outlive the source.
[[nodiscard]] std::unique_ptr<FrontSource> openMacFrontSource(MainLoop& loop,
                                                              const SteadyClock& clock);

}  // namespace tessum
