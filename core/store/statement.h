// One SQL statement from its preparation to its end.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/base/date.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tessum {

// A prepared statement, finalized by the destructor. Parameters are bound in the order of the
// calls, the first one at position 1; columns are counted from 0. Not thread-safe.
class Statement {
 public:
  // Prepares `sql`, which ends with a NUL. Throws DatabaseError::prepareFailed. `db` must outlive
  // the statement.
  Statement(sqlite3* db, const char* sql);

  // Binding copies the value. Throws DatabaseError::executionFailed when SQLite has no memory.
  // Absent texts and dates become NULL; a text ends at its first NUL.
  Statement& bind(const std::string& text);
  Statement& bind(const std::optional<std::string>& text);
  Statement& bind(Date date);
  Statement& bind(const std::optional<Date>& date);
  Statement& bindRowID(std::int64_t id);
  // A limit outside the signed 32-bit range stops the process.
  Statement& bindLimit(std::int64_t limit);

  // Makes the statement ready to be bound and run again.
  void reset();

  // Runs a statement that returns no rows. Throws DatabaseError::executionFailed.
  void execute();

  // Moves to the next row of a statement that returns rows. False when there is none, and also when
  // the read fails: a read reports no error but ends early.
  [[nodiscard]] bool nextRow();

  // The columns of the current row. A text is made valid UTF-8 and ends at its first NUL, as bound
  // texts do; readText() reuses the memory of `text`. NULL in a column that is never NULL stops the
  // process.
  [[nodiscard]] std::string text(int column);
  [[nodiscard]] std::optional<std::string> optionalText(int column);
  void readText(int column, std::string& text);
  void readText(int column, std::optional<std::string>& text);
  [[nodiscard]] Date date(int column);
  [[nodiscard]] std::optional<Date> optionalDate(int column);
  [[nodiscard]] std::int64_t rowID(int column);
  [[nodiscard]] std::int32_t count(int column);
  [[nodiscard]] double real(int column);

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const noexcept;
  };

  void checkBound(int result) const;
  const char* bytes(int column);  // null for NULL

  sqlite3* db_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
  int position_ = 0;
};

}  // namespace tessum
