#include "core/platform/flush.h"

#include <unistd.h>

namespace tessum {

int flushToDisk(int descriptor) {
  return fsync(descriptor);
}

}  // namespace tessum
