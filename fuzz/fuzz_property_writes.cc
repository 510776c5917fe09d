// Requests of a window manager, as the X server hands them on: none is longer than all of them.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/base/check.h"
#include "core/workspace/x11/property_log.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kShortestRequest = 12;
  const auto writes = tessum::propertyWrites({reinterpret_cast<const char*>(data), size});
  TESSUM_CHECK(writes.size() * kShortestRequest <= size, "more writes than there is room for");
  return 0;
}
