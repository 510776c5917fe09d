// A second connection to a database, through which a test prepares and inspects it.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace tessum {

// Not thread-safe.
class Sql {
 public:
  // Opens the file at `path`, creating it where it is missing. Throws std::runtime_error.
  explicit Sql(const std::string& path);
  ~Sql();
  Sql(const Sql&) = delete;
  Sql& operator=(const Sql&) = delete;

  // Runs `script`. Throws std::runtime_error with SQLite's message.
  void run(const std::string& script);

  // SQLite's message for `script`, which must fail; its words change from version to version.
  [[nodiscard]] std::string failureOf(const std::string& script);

  // The rows of `query`, each with its columns as text joined by "|" and NULL for an absent one.
  [[nodiscard]] std::vector<std::string> rows(const std::string& query);

  // The first row of `query`; an empty text where there is none.
  [[nodiscard]] std::string row(const std::string& query);

 private:
  sqlite3* db_ = nullptr;
};

// How often the file at `path` has been written to: its change counter, as SQLite's file format has
// it, read without a lock.
[[nodiscard]] std::uint32_t changeCounter(const std::string& path);

// SQLite's message for a result such as SQLITE_BUSY.
[[nodiscard]] std::string sqliteText(int result);

}  // namespace tessum
