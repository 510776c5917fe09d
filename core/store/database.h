// The history as the monitor and the assistants use it: one SQLite connection to one file.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "core/platform/calendar.h"
#include "core/store/database_error.h"
#include "core/store/records.h"
#include "core/store/session_writer.h"

struct sqlite3;

namespace tessum {

class Statement;

// Takes one session of a query's result, which lives for that call. It must not use the database.
using ActivityVisitor = std::function<void(const Activity&)>;

// An open database. Several processes may have one on the same file; SQLite's locking coordinates
// them, and an operation that meets a lock fails at once. Not thread-safe.
//
// Every operation is one statement that is prepared, run and finalized before it returns and
// commits by itself. It throws DatabaseError::prepareFailed when the statement cannot be
// prepared; a writing one throws executionFailed when it does not complete, while a reading one
// then gives the rows read so far.
class Database final : public SessionWriter {
 public:
  // Opens the file at `path`, creating it, for the user alone (0600), and its tables where they are
  // missing. Throws DatabaseError. `calendar` says where days begin and must outlive the object.
  Database(std::string path, const Calendar& calendar);
  ~Database() override;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // The path given at construction.
  [[nodiscard]] const std::string& path() const { return path_; }

  ////////////////////////////////////////////////////////////////////////////////////////////
  // Sessions. A limit of 0 gives nothing, a negative one everything; one outside the signed
  // 32-bit range stops the process.

  // Stores `activity`, whose id is ignored, and returns its row id.
  std::int64_t insert(const Activity& activity) override;

  // Sets the end or the title of a session. An id that does not exist is no error.
  void updateEndTime(std::int64_t id, Date end) override;
  void updateTitle(std::int64_t id, const std::string& title) override;

  // The sessions that began on the local day of `day`, the newest first. A visitor gets them one by
  // one; a list of many takes several times the memory of their texts.
  [[nodiscard]] std::vector<Activity> fetchActivities(Date day, std::int64_t limit);
  void fetchActivities(Date day, std::int64_t limit, const ActivityVisitor& visit);

  // The sessions of all days whose application name or title holds `query`, the newest first.
  // Case is ignored for ASCII letters; "%" and "_" in the query stand for any text and any
  // character.
  [[nodiscard]] std::vector<Activity> searchActivities(std::string_view query, std::int64_t limit);
  void searchActivities(std::string_view query, std::int64_t limit, const ActivityVisitor& visit);

  // The total of each application of the local day of `day`, the largest first. An open session
  // counts up to now.
  [[nodiscard]] std::vector<AppUsageSummary> appUsage(Date day);

  ////////////////////////////////////////////////////////////////////////////////////////////
  // Annotations.

  // Ends every open annotation at `at`.
  void endCurrentAnnotation(Date at);

  // Ends every open annotation at the start of `annotation`, stores it without its id and returns
  // its row id. When storing fails, the open ones are ended all the same.
  std::int64_t insertAnnotation(const Annotation& annotation);

  // The annotations that overlap the local day of `day`, the newest first; limits as above.
  [[nodiscard]] std::vector<Annotation> fetchAnnotations(Date day, std::int64_t limit);

  // The newest open annotation; absent when there is none.
  [[nodiscard]] std::optional<Annotation> currentAnnotation();

 private:
  struct Close {
    void operator()(sqlite3* db) const noexcept;
  };
  class DayRangeView;

  void open();
  void exec(const char* script);

  std::unique_ptr<sqlite3, Close> db_;
  const std::string path_;
  const Calendar& calendar_;
};

}  // namespace tessum
