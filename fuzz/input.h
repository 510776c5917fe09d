// Takes values from a fuzzer's bytes.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace tessum {

// Once the bytes are used up every value is zero or empty.
class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}

  [[nodiscard]] bool isEmpty() const { return rest_.empty(); }

  [[nodiscard]] std::uint8_t takeByte() {
    const auto bytes = take(1);
    return bytes.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(bytes[0]);
  }

  [[nodiscard]] bool takeBool() { return takeByte() % 2 != 0; }

  // Any double, infinities and NaN included.
  [[nodiscard]] double takeDouble() {
    double value = 0;
    const auto bytes = take(sizeof value);
    std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }

  // A text of up to 255 bytes of any kind.
  [[nodiscard]] std::string takeText() { return std::string(take(takeByte())); }

  [[nodiscard]] std::string_view takeRest() { return take(rest_.size()); }

 private:
  std::string_view take(std::size_t size) {
    const auto taken = rest_.substr(0, size);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  std::string_view rest_;
};

}  // namespace tessum
