// A test of sessions that statements of a connection can call. For History alone.

#pragma once

#include "core/store/history.h"

namespace tessum {

// While it lives, is_meant(app_name, bundle_id, title) in a statement of the connection gives the
// result of the test for such a session; an empty test means every session. One at a time. Not
// thread-safe.
class SessionTestFunction {
 public:
  // `test` must outlive the object. Throws DatabaseError.
  SessionTestFunction(sqlite3* db, const SessionTest& test);
  ~SessionTestFunction();
  SessionTestFunction(const SessionTestFunction&) = delete;
  SessionTestFunction& operator=(const SessionTestFunction&) = delete;

  [[nodiscard]] bool isMeant(const Activity& session) const { return !test_ || test_(session); }

 private:
  sqlite3* db_;
  const SessionTest& test_;
};

}  // namespace tessum
