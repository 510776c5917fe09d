// A request must parse the same however its bytes are cut. The first bytes of the input say where
// to cut; the rest is the request.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/http/http_request.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t cuts = data[0] % 16;
  if (size < 1 + cuts) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1 + cuts, size - 1 - cuts);

  tessum::HTTPRequestParser parser;
  std::size_t arrived = 0;
  for (std::size_t i = 0; i <= cuts; ++i) {
    arrived = i == cuts ? bytes.size() : std::min<std::size_t>(bytes.size(), arrived + data[1 + i]);
    const tessum::json::PaddedString part(bytes.substr(0, arrived));
    const auto found = parser.parse(part.view());
    const auto expected = tessum::parseHTTPRequest(part.view());
    require(found == expected);
    require(!parser.isUnreadable() || !found);
    if (found) break;
  }
  return 0;
}
