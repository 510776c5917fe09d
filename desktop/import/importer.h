// Puts the records of other histories into this one.
//
// Records are stored in pieces, each in one transaction. Between two pieces the lock is free for as
// long as it was held, so that a recorder or a person that tries again finds it free soon. If the
// program is killed, what was stored stays; the next run finds it there already.

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "core/store/history.h"

namespace tessum {

struct ImportCounts {
  std::int64_t sessions = 0;  // added
  std::int64_t notes = 0;
  std::int64_t known = 0;  // there already
};

// Not thread-safe.
class Importer {
 public:
  // Without a history nothing is there already. A trial only counts. `onProgress` is called now and
  // then with the number of records so far.
  Importer(History* history, bool isTrial, std::function<void(std::int64_t)> onProgress);

  // Takes a record. Throws DatabaseError, as finish() does.
  void add(const Activity& session);
  void add(const Annotation& note);

  // Stores the rest. Returns what was added since the last call.
  [[nodiscard]] ImportCounts finish();

 private:
  template <typename Record>
  void count(const Record& record, const std::string& key, std::int64_t& added);
  template <typename Record>
  void storeAll(std::vector<Record>& records, std::int64_t& added);
  void store();

  History* history_;
  bool isTrial_;
  std::function<void(std::int64_t)> onProgress_;
  ImportCounts counts_;
  std::int64_t records_ = 0;
  std::vector<Activity> sessions_;  // not stored yet
  std::vector<Annotation> notes_;
  std::size_t mostSessions_;                 // of the next piece
  std::unordered_set<std::size_t> counted_;  // in a trial, what would have been added
};

}  // namespace tessum
