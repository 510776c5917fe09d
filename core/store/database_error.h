// The errors of the database.

#pragma once

#include <string>
#include <string_view>

#include "core/base/described_error.h"

namespace tessum {

// Its description says what failed, then SQLite's message. Immutable.
class DatabaseError : public DescribedError {
 public:
  enum class Case { openFailed, prepareFailed, executionFailed };

  // `code` is SQLite's result code, primary or extended.
  [[nodiscard]] static DatabaseError openFailed(int code, std::string_view message);
  [[nodiscard]] static DatabaseError prepareFailed(int code, std::string_view message);
  [[nodiscard]] static DatabaseError executionFailed(int code, std::string_view message);

  [[nodiscard]] Case errorCase() const { return case_; }

  // SQLite's primary result code, such as SQLITE_BUSY.
  [[nodiscard]] int code() const { return code_; }

  // Whether another program holds a lock, so that the same call may succeed later.
  [[nodiscard]] bool isLocked() const;

 private:
  DatabaseError(Case errorCase, int code, std::string description);

  Case case_;
  int code_;
};

}  // namespace tessum
