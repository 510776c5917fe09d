// Reports as data for other programs: JSON and comma-separated lines, as docs/DATA.md describes
// them. Times are local with their offset from UTC, durations are seconds.

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/json/value.h"
#include "core/store/history.h"
#include "desktop/periods/period.h"
#include "desktop/usage/finds.h"
#include "desktop/usage/grouping.h"
#include "desktop/usage/usage.h"

namespace tessum {

enum class DataFormat { json, csv };

// Takes a piece of text. The pieces of a report are written one behind the other.
using TextSink = std::function<void(std::string_view)>;

// Writes a report of sessions and notes one by one, so that it may have millions. Not thread-safe.
class RecordData {
 public:
  // Begins the report of `period`, which is `range`; absent for all of the history. Sessions are
  // cut at its edges, notes are whole. Open ones are counted up to `now`. `sink` must outlive the
  // object.
  RecordData(DataFormat format, const std::string& report, const std::optional<Period>& period,
             const DayRange& range, Date now, const TextSink& sink);

  void add(const Activity& session);
  void add(const Annotation& note);

  // Ends it.
  void finish();

  // Ends the report of a search, of which only some sessions were added. The newest `most` of the
  // finds become its groups.
  void finish(const Finds& finds, std::size_t most);

 private:
  struct Row;
  void add(const Row& row);
  void finishTotals();

  DataFormat format_;
  DayRange range_;
  Date now_;
  const TextSink& sink_;
  std::int64_t count_ = 0;
  double seconds_ = 0;
  std::int64_t sessions_ = 0;
};

// `most` of each list of groups; 0 for all.
[[nodiscard]] std::string usageData(DataFormat format, const Usage& usage,
                                    const std::vector<Grouping>& by, std::size_t most);

}  // namespace tessum
