#include "core/platform/pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
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

}  // namespace tessum
