// A test of texts that statements of a connection can call. For History alone.

#pragma once

#include "core/store/history.h"

namespace tessum {

// While it lives, is_meant(text) in a statement of the connection says what the test says; that an
// absent text is not meant; and of every text that it is meant where the test is empty. One at a
// time. Not thread-safe.
class TextTestFunction {
 public:
  // `test` must outlive the object. Throws DatabaseError.
  TextTestFunction(sqlite3* db, const TextTest& test);
  ~TextTestFunction();
  TextTestFunction(const TextTestFunction&) = delete;
  TextTestFunction& operator=(const TextTestFunction&) = delete;

  [[nodiscard]] bool isMeant(std::optional<std::string_view> text) const;

 private:
  sqlite3* db_;
  const TextTest& test_;
};

}  // namespace tessum
