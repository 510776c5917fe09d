// Regular expressions of the settings.

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace re2 {
class RE2;
}

namespace tessum {

// Looks through a text in time that grows with its length and not faster, whatever the pattern:
// titles come from anywhere. Immutable.
class Pattern {
 public:
  // How many bytes of text are searched. A pattern of thousands of letters can take seconds for a
  // title of a million, which nobody reads.
  static constexpr std::size_t kMostBytes = 1024;

  // Throws std::invalid_argument that says what is wrong with `text`.
  explicit Pattern(const std::string& text);

  [[nodiscard]] const std::string& text() const;

  // Whether some part of `text`, which is UTF-8, is as the pattern says. A longer text than
  // kMostBytes counts as such: what is not known to be harmless is hidden.
  [[nodiscard]] bool isIn(std::string_view text) const;

 private:
  std::shared_ptr<const re2::RE2> compiled_;
};

}  // namespace tessum
