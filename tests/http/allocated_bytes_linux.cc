#include <malloc.h>

#include "tests/http/allocated_bytes.h"

namespace tessum {

std::size_t allocatedBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

}  // namespace tessum
