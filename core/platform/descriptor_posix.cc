#include "core/platform/descriptor.h"

#include <cstddef>

namespace tessum {

int writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = retried([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
    if (count == -1) return -1;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

}  // namespace tessum
