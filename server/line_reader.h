// Lines from a file descriptor.

#pragma once

#include <cstddef>
#include <optional>

#include "core/json/padded.h"

namespace tessum {

// Reads lines of any length without copying: a line stays in the buffer it was read into. Not
// thread-safe.
class LineReader {
 public:
  // Reads from `descriptor`, which the caller keeps.
  explicit LineReader(int descriptor) : descriptor_(descriptor) {}

  // The next line without its line break, "\n" or "\r\n"; the last one need not have any. Absent
  // at the end of input. The line is valid until the next call. Throws std::system_error when
  // reading fails and std::bad_alloc when a line does not fit into memory.
  [[nodiscard]] std::optional<json::PaddedView> next();

 private:
  [[nodiscard]] json::PaddedView leftover() const { return buffer_.view(begin_, end_ - begin_); }
  [[nodiscard]] bool readMore();
  void makeRoom();

  int descriptor_;
  json::PaddedBuffer buffer_;
  std::size_t begin_ = 0;  // start of the bytes not returned yet
  std::size_t end_ = 0;
};

}  // namespace tessum
