// How much memory this program has allocated and not freed.

#pragma once

#include <cstddef>

namespace tessum {

// Always 0 under the sanitizers, which have their own allocator.
[[nodiscard]] std::size_t allocatedBytes();

}  // namespace tessum
