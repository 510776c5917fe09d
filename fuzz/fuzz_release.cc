// The release service's response: decoded, or rejected with a DecodingError.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/json/reader.h"
#include "core/update/release_info.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    static_cast<void>(tessum::decodeReleaseInfo({reinterpret_cast<const char*>(data), size}));
  } catch (const tessum::json::DecodingError&) {
  }
  return 0;
}
