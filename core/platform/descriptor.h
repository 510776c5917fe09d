// Ownership of a file descriptor.

#pragma once

#include <unistd.h>

#include <utility>

namespace tessum {

// Closes its descriptor when it goes. One thread at a time.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }

  // -1 when none is held.
  [[nodiscard]] int number() const { return number_; }

 private:
  int number_ = -1;
};

}  // namespace tessum
