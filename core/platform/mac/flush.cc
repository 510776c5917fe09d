#include "core/platform/flush.h"

#include <fcntl.h>
#include <unistd.h>

namespace tessum {

int flushToDisk(int descriptor) {
  // Here fsync stops at the drive's own cache. File systems that know no better, such as those of
  // other computers, refuse the stronger call.
  if (fcntl(descriptor, F_FULLFSYNC) == 0) return 0;
  return fsync(descriptor);
}

}  // namespace tessum
