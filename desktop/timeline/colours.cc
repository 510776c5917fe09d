#include "desktop/timeline/colours.h"

#include <cstdint>

namespace tessum {

std::size_t colourOf(std::string_view name) {
  // FNV-1a, since std::hash may change from one build to the next.
  std::uint32_t hash = 2166136261U;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  return (hash ^ hash >> 16U) % kColours;
}

std::string colourStyle(std::string_view name) {
  return "c" + std::to_string(colourOf(name));
}

}  // namespace tessum
