// Lines from a file descriptor.

#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

#include "core/json/reader.h"

namespace tessum {

// Reads lines of any length, without a copy: a line stays in the buffer it was read into.
// Not thread-safe.
class LineReader {
 public:
  // Reads from `descriptor`, which stays the caller's.
  explicit LineReader(int descriptor) : descriptor_(descriptor) {}

  // The next line without its line break, "\n" or "\r\n"; the last one need not have any. Absent
  // at the end of input. The line is valid until the next call. Throws std::system_error when
  // reading fails and std::bad_alloc when a line does not fit into memory.
  [[nodiscard]] std::optional<json::PaddedView> next();

 private:
  struct Free {
    void operator()(char* bytes) const noexcept { std::free(bytes); }
  };

  [[nodiscard]] std::string_view leftover() const;
  [[nodiscard]] bool readMore();
  void makeRoom();

  int descriptor_;
  std::unique_ptr<char, Free> buffer_;
  std::size_t capacity_ = 0;  // without the padding that lies behind it
  std::size_t begin_ = 0;     // of what has not been returned yet
  std::size_t end_ = 0;
};

}  // namespace tessum
