#include "tests/http/live_blocks.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::int64_t> live = 0;

}  // namespace

namespace tessum {

std::int64_t liveBlocks() {
  return live;
}

}  // namespace tessum

// The other forms of both operators end up in these.

void* operator new(std::size_t size) {
  void* const block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  ++live;
  return block;
}

void operator delete(void* block) noexcept {
  if (block != nullptr) --live;
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}
