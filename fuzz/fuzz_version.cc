// Two versions with a line feed between them: neither is newer than itself, and not each than the
// other.

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
  TESSUM_CHECK(!(tessum::isNewer(a, b) && tessum::isNewer(b, a)), "each newer than the other");
  static_cast<void>(tessum::versionOfTag(text));
  return 0;
}
