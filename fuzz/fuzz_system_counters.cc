// A name's length, the name, then the X server's list of counters: a number that is found is in the
// list.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/base/check.h"
#include "core/workspace/x11/system_counters.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const auto name = bytes.substr(0, data[0]);
  const auto list = bytes.substr(name.size());
  const auto counter = tessum::counterNamed(name, list);
  if (!counter) return 0;
  const std::string_view number(reinterpret_cast<const char*>(&*counter), sizeof *counter);
  TESSUM_CHECK(list.find(number) != std::string_view::npos, "a number out of nowhere");
  TESSUM_CHECK(list.find(name) != std::string_view::npos, "a name out of nowhere");
  return 0;
}
