// Ownership of a file descriptor, and what every use of one needs.

#pragma once

#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

namespace tessum {

// Closes its descriptor when it is destroyed. One thread at a time.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }

  // -1 when none is held.
  [[nodiscard]] int number() const { return number_; }

  // Hands the descriptor over to a new owner.
  [[nodiscard]] int release() { return std::exchange(number_, -1); }

  // Closes it now. Returns 0, or -1 with errno set. Do not repeat a call that failed: the number
  // may belong to another file by then.
  [[nodiscard]] int close() { return ::close(std::exchange(number_, -1)); }

 private:
  int number_ = -1;
};

// What is written to `writeEnd` is read from `readEnd`. Programs that are started from here get
// neither, unless it becomes one of their standard streams. One thread at a time.
struct Pipe {
  // Throws std::system_error when the system has no descriptors left.
  Pipe();

  Descriptor readEnd;
  Descriptor writeEnd;
};

// The result of the system call `call`, which is made again when a signal interrupts it.
template <typename Call>
auto retried(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

// Writes all of `bytes` to `descriptor`, in one system call where it takes them in one. Returns 0,
// or -1 with errno set; some of the bytes may have been written then. Any thread.
[[nodiscard]] int writeAll(int descriptor, std::string_view bytes);

}  // namespace tessum
