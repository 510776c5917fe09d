// Several statements that take effect together or not at all.

#pragma once

struct sqlite3;

namespace tessum {

// Takes back what was written since it began, unless it is kept. Not thread-safe.
class Transaction {
 public:
  // Begins it with the lock for writing. Throws DatabaseError, as does keep().
  explicit Transaction(sqlite3* db);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void keep();

 private:
  sqlite3* db_;
};

}  // namespace tessum
