#include "server/line_reader.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <string_view>
#include <system_error>

namespace tessum {
namespace {

constexpr std::size_t kUsualCapacity = 64 * 1024;

std::string_view withoutCarriageReturn(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// The buffer always has the padding behind its capacity.
json::PaddedView padded(std::string_view line) {
  return {line, json::kPadding};
}

}  // namespace

std::optional<json::PaddedView> LineReader::next() {
  std::size_t searched = 0;  // how much of what is left is known to hold no line feed
  for (;;) {
    const std::string_view left = leftover();
    const auto lineFeed = left.find('\n', searched);
    if (lineFeed != std::string_view::npos) {
      begin_ += lineFeed + 1;
      return padded(withoutCarriageReturn(left.substr(0, lineFeed)));
    }
    searched = left.size();
    if (readMore()) continue;
    const std::string_view last = leftover();
    if (last.empty()) return std::nullopt;
    begin_ = end_;
    return padded(last);
  }
}

std::string_view LineReader::leftover() const {
  return {buffer_.get() + begin_, end_ - begin_};
}

// False at the end of input.
bool LineReader::readMore() {
  makeRoom();
  for (;;) {
    const ssize_t count = ::read(descriptor_, buffer_.get() + end_, capacity_ - end_);
    if (count >= 0) {
      end_ += static_cast<std::size_t>(count);
      return count > 0;
    }
    if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "Cannot read standard input");
    }
  }
}

// Moves what is left to the front, and doubles the buffer when it is full. Once a long line has
// been dealt with, its memory is given back.
void LineReader::makeRoom() {
  const std::size_t left = end_ - begin_;
  if (begin_ > 0) {
    std::memmove(buffer_.get(), buffer_.get() + begin_, left);
    begin_ = 0;
    end_ = left;
  }
  std::size_t wanted = capacity_;
  if (left == capacity_) wanted = capacity_ == 0 ? kUsualCapacity : 2 * capacity_;
  if (left == 0) wanted = kUsualCapacity;
  if (wanted == capacity_) return;

  // realloc moves large blocks without copying them.
  auto* grown = static_cast<char*>(std::realloc(buffer_.get(), wanted + json::kPadding));
  if (grown == nullptr) throw std::bad_alloc();
  static_cast<void>(buffer_.release());
  buffer_.reset(grown);
  capacity_ = wanted;
}

}  // namespace tessum
