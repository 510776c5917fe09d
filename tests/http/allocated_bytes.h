// How much memory this program has allocated and not freed.

#pragma once

#include <cstddef>

namespace tessum {

// Always 0 under the sanitizers, which bring an allocator of their own.
[[nodiscard]] std::size_t allocatedBytes();

}  // namespace tessum
