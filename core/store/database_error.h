// What went wrong in the activity store.

#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace tessum {

// Carries the message that SQLite gave. Immutable.
class DatabaseError : public std::exception {
 public:
  enum class Case { openFailed, prepareFailed, executionFailed };

  [[nodiscard]] static DatabaseError openFailed(std::string_view message);
  [[nodiscard]] static DatabaseError prepareFailed(std::string_view message);
  [[nodiscard]] static DatabaseError executionFailed(std::string_view message);

  [[nodiscard]] Case errorCase() const { return case_; }

  // The text for people: what failed, then SQLite's message. what() gives the same.
  [[nodiscard]] const std::string& errorDescription() const { return description_; }
  [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

 private:
  DatabaseError(Case errorCase, std::string_view prefix, std::string_view message);

  Case case_;
  std::string description_;
};

}  // namespace tessum
