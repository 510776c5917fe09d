// Texts with padding behind them.
//
// The reader loads whole blocks of bytes, so it may look past the end of a text. These types keep
// the readable bytes behind each text in sight of the compiler, from the buffer that the text
// arrived in to the reader.

#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace tessum::json {

// How many bytes behind a text the reader may look at, whatever they hold.
inline constexpr std::size_t kPadding = 64;

// A text with kPadding readable bytes behind it. It owns neither; it is valid as long as what it
// was taken from, and until that is changed.
class PaddedView {
 public:
  [[nodiscard]] std::string_view text() const { return text_; }

  // A part of the text, as std::string_view::substr() gives it. What follows it is its padding.
  [[nodiscard]] PaddedView substr(std::size_t begin,
                                  std::size_t size = std::string_view::npos) const {
    return PaddedView(text_.substr(begin, size));
  }

  friend bool operator==(const PaddedView&, const PaddedView&) = default;

 private:
  friend class PaddedBuffer;
  friend class PaddedString;

  explicit PaddedView(std::string_view text) : text_(text) {}

  std::string_view text_;
};

// A text that owns its padding. Not thread-safe.
class PaddedString {
 public:
  // Copies `text`.
  explicit PaddedString(std::string_view text);

  // Takes `text` over.
  [[nodiscard]] static PaddedString take(std::string text);

  void append(std::string_view text);

  [[nodiscard]] PaddedView view() const;

 private:
  PaddedString() = default;

  std::string bytes_;  // the text and the padding
};

// Memory to read bytes into. Not thread-safe.
class PaddedBuffer {
 public:
  // Has no memory until resize().
  PaddedBuffer() = default;

  explicit PaddedBuffer(std::size_t capacity) { resize(capacity); }

  [[nodiscard]] char* data() { return bytes_.get(); }

  // Without the padding.
  [[nodiscard]] std::size_t capacity() const { return capacity_; }

  // Keeps as many bytes as fit. Throws std::bad_alloc, and then changes nothing.
  void resize(std::size_t capacity);

  // `size` bytes from `begin` on, which must lie within the capacity.
  [[nodiscard]] PaddedView view(std::size_t begin, std::size_t size) const {
    return PaddedView({bytes_.get() + begin, size});
  }

 private:
  struct Free {
    void operator()(char* bytes) const noexcept { std::free(bytes); }
  };

  std::unique_ptr<char, Free> bytes_;
  std::size_t capacity_ = 0;
};

}  // namespace tessum::json
