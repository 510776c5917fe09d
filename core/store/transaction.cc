#include "core/store/transaction.h"

#include <sqlite3.h>

#include "core/store/statement.h"

namespace tessum {

Transaction::Transaction(sqlite3* db) : db_(db) {
  Statement(db_, "BEGIN IMMEDIATE;").execute();
}

Transaction::~Transaction() {
  if (sqlite3_get_autocommit(db_) == 0) {
    sqlite3_exec(db_, "ROLLBACK;", nullptr, nullptr, nullptr);
  }
}

void Transaction::keep() {
  Statement(db_, "COMMIT;").execute();
}

}  // namespace tessum
