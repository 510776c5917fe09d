// The recorder's own connection to the database.

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/store/records.h"

struct sqlite3;

namespace tessum {

// A session as it should be in the database.
struct SessionChange {
  std::optional<std::int64_t> rowID;  // absent while it has no row
  std::optional<Activity> session;    // absent where its row is to go; its id is ignored
};

// Writes in one transaction what has changed since the last one, so that a session's end and the
// next one's beginning are stored together or not at all. Waits for no lock. Not thread-safe.
class SessionStore {
 public:
  // Nothing is opened before the first call of write(). There must be a database at `path` then.
  explicit SessionStore(std::string path);
  ~SessionStore();
  SessionStore(const SessionStore&) = delete;
  SessionStore& operator=(const SessionStore&) = delete;

  // Makes the database agree with `changes`, which come in the order of their beginning, and
  // returns their row ids, 0 for a row that is gone. A row that somebody else has deleted stays
  // deleted. Throws DatabaseError and has then changed nothing.
  [[nodiscard]] std::vector<std::int64_t> write(std::span<const SessionChange> changes);

 private:
  struct Close {
    void operator()(sqlite3* db) const noexcept;
  };

  void open();
  [[nodiscard]] std::int64_t writeOne(const SessionChange& change);

  const std::string path_;
  std::unique_ptr<sqlite3, Close> db_;
};

}  // namespace tessum
