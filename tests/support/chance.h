// Random choices that come out the same for the same seed.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace tessum {

// The base of what makes up test data. Not thread-safe.
class Chance {
 public:
  explicit Chance(std::uint32_t seed) : random_(seed) {}

  // At least 0, and less than `end`.
  int below(int end) { return static_cast<int>(random_() % static_cast<std::uint32_t>(end)); }

  // True once in `oneIn` times.
  bool maybe(int oneIn) { return below(oneIn) == 0; }

  template <std::size_t size>
  std::string oneOf(const std::array<std::string_view, size>& choices) {
    return std::string(choices[static_cast<std::size_t>(below(static_cast<int>(size)))]);
  }

 private:
  std::mt19937 random_;
};

}  // namespace tessum
