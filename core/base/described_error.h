// Errors that describe themselves to people and clients.

#pragma once

#include <exception>
#include <string>
#include <utility>

namespace tessum {

// Immutable.
class DescribedError : public std::exception {
 public:
  explicit DescribedError(std::string description) : description_(std::move(description)) {}

  // One line that says what went wrong. It may quote text from outside, NULs included.
  [[nodiscard]] const std::string& description() const { return description_; }

  // The description up to its first NUL, for main().
  [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::string description_;
};

// The whole description of `error`, of whatever class it is.
[[nodiscard]] std::string descriptionOf(const std::exception& error);

}  // namespace tessum
