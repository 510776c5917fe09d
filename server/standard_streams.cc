#include "server/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tessum {

void fillClosedStandardStreams() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    // open() returns the lowest number that is closed.
    const int mode = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (open("/dev/null", mode) != descriptor) {
      throw std::system_error(errno, std::generic_category(), "Cannot open /dev/null");
    }
  }
}

}  // namespace tessum
