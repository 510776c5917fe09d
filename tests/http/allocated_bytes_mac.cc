#include <malloc/malloc.h>

#include "tests/http/allocated_bytes.h"

namespace tessum {

std::size_t allocatedBytes() {
  return mstats().bytes_used;
}

}  // namespace tessum
