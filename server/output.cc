#include "server/output.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tessum {

void writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "Cannot write standard output");
    }
  }
}

}  // namespace tessum
