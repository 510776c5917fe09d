// Two versions, separated by a line feed: neither is newer than itself, and at most one is newer
// than the other.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/base/check.h"
#include "core/update/version.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string_view a = text.substr(0, text.find('\n'));
  const std::string_view b = a.size() < text.size() ? text.substr(a.size() + 1) : a;
  TESSUM_CHECK(!tessum::isNewer(a, a) && !tessum::isNewer(b, b), "newer than itself");
  TESSUM_CHECK(!(tessum::isNewer(a, b) && tessum::isNewer(b, a)), "both newer than each other");
  static_cast<void>(tessum::versionOfTag(text));
  return 0;
}
