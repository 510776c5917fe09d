// Regular expressions in the settings.

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace tessum {

// Searches in time linear in the text's length, whatever the pattern, because titles are untrusted.
// Copies share the compiled form, which is made by the first search: of many rules, most never come
// to search a title. Immutable.
class Pattern {
 public:
  // Throws std::invalid_argument that says what is wrong with the pattern `text`.
  explicit Pattern(const std::string& text);

  [[nodiscard]] const std::string& text() const;

  // The longest text that is searched, in bytes: some hundred thousand for a usual pattern, and at
  // least 1,024. A pattern of thousands of letters can take seconds on a text of a million.
  [[nodiscard]] std::size_t mostBytes() const;

  // Whether the pattern matches some part of `text`, which is UTF-8. A text longer than mostBytes()
  // counts as a match: when in doubt, a title is hidden.
  [[nodiscard]] bool isIn(std::string_view text) const;

 private:
  class Compiled;

  std::shared_ptr<Compiled> compiled_;
};

}  // namespace tessum
