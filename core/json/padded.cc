#include "core/json/padded.h"

#include <new>
#include <utility>

namespace tessum::json {

PaddedString::PaddedString(std::string_view text) {
  bytes_.reserve(text.size() + kPadding);
  bytes_.append(text);
  bytes_.append(kPadding, '\0');
}

PaddedString PaddedString::take(std::string text) {
  PaddedString padded;
  padded.bytes_ = std::move(text);
  padded.bytes_.append(kPadding, '\0');
  return padded;
}

void PaddedString::append(std::string_view text) {
  bytes_.resize(bytes_.size() - kPadding);
  bytes_.append(text);
  bytes_.append(kPadding, '\0');
}

PaddedView PaddedString::view() const {
  return PaddedView(std::string_view(bytes_).substr(0, bytes_.size() - kPadding));
}

void PaddedBuffer::resize(std::size_t capacity) {
  // realloc moves large blocks without copying them.
  auto* resized = static_cast<char*>(std::realloc(bytes_.get(), capacity + kPadding));
  if (resized == nullptr) throw std::bad_alloc();
  static_cast<void>(bytes_.release());
  bytes_.reset(resized);
  capacity_ = capacity;
}

}  // namespace tessum::json
