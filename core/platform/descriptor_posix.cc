#include "core/platform/descriptor.h"

#include <fcntl.h>

#include <cstddef>
#include <system_error>

namespace tessum {

Pipe::Pipe() {
  int ends[2] = {-1, -1};
  if (pipe(ends) != 0) {
    throw std::system_error(errno, std::generic_category(), "Cannot make a pipe");
  }
  readEnd = Descriptor(ends[0]);
  writeEnd = Descriptor(ends[1]);
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
}

int writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = retried([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
    if (count == -1) return -1;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

}  // namespace tessum
