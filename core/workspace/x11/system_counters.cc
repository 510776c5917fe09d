// We parse the list ourselves because the library's iterator, as of 1.15, starts each name two
// bytes late.

#include "core/workspace/x11/system_counters.h"

#include <cstddef>
#include <cstring>

namespace tessum {
namespace {

// A counter is a 4-byte number, an 8-byte resolution, a 2-byte name length and the name, padded to
// a multiple of four bytes.
constexpr std::size_t kLengthPlace = 12;
constexpr std::size_t kNamePlace = 14;

template <typename Number>
Number numberAt(std::string_view bytes, std::size_t place) {
  Number number = 0;
  std::memcpy(&number, bytes.data() + place, sizeof number);
  return number;
}

}  // namespace

std::optional<std::uint32_t> counterNamed(std::string_view name, std::string_view list) {
  while (list.size() >= kNamePlace) {
    const std::size_t length = numberAt<std::uint16_t>(list, kLengthPlace);
    if (list.size() - kNamePlace < length) break;
    if (list.substr(kNamePlace, length) == name) return numberAt<std::uint32_t>(list, 0);
    const std::size_t size = (kNamePlace + length + 3) / 4 * 4;
    if (list.size() < size) break;
    list.remove_prefix(size);
  }
  return std::nullopt;
}

}  // namespace tessum
