// How much this program has allocated and not freed.

#pragma once

#include <cstdint>

namespace tessum {

// The number of blocks that operator new has given and operator delete has not taken back.
[[nodiscard]] std::int64_t liveBlocks();

}  // namespace tessum
