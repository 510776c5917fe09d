#include "server/line_reader.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>

namespace tessum {
namespace {

constexpr std::size_t kUsualCapacity = 64 * 1024;

json::PaddedView withoutCarriageReturn(json::PaddedView line) {
  if (!line.text().ends_with('\r')) return line;
  return line.substr(0, line.text().size() - 1);
}

}  // namespace

std::optional<json::PaddedView> LineReader::next() {
  std::size_t searched = 0;  // how many of the leftover bytes have no line feed
  for (;;) {
    const json::PaddedView left = leftover();
    const auto lineFeed = left.text().find('\n', searched);
    if (lineFeed != std::string_view::npos) {
      begin_ += lineFeed + 1;
      return withoutCarriageReturn(left.substr(0, lineFeed));
    }
    searched = left.text().size();
    if (readMore()) continue;
    const json::PaddedView last = leftover();
    if (last.text().empty()) return std::nullopt;
    begin_ = end_;
    return last;
  }
}

// False at the end of input.
bool LineReader::readMore() {
  makeRoom();
  for (;;) {
    const ssize_t count = ::read(descriptor_, buffer_.data() + end_, buffer_.capacity() - end_);
    if (count >= 0) {
      end_ += static_cast<std::size_t>(count);
      return count > 0;
    }
    if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "Cannot read standard input");
    }
  }
}

// Moves the leftover bytes to the front, and doubles the buffer when it is full. Frees the memory
// of a long line once it has been used.
void LineReader::makeRoom() {
  const std::size_t left = end_ - begin_;
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, left);
    begin_ = 0;
    end_ = left;
  }
  std::size_t wanted = buffer_.capacity();
  if (left == wanted) wanted *= 2;
  if (left == 0) wanted = kUsualCapacity;
  if (wanted != buffer_.capacity()) buffer_.resize(wanted);
}

}  // namespace tessum
