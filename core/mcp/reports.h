// The reports that language models read. They print all records that they are given, in order.

#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "core/platform/clock.h"
#include "core/store/records.h"

namespace tessum {

// Makes the report of formatActivities() from sessions that come one by one. Not thread-safe.
class ActivityReport {
 public:
  void add(const Activity& activity);

  // The whole report. The object cannot be used afterwards.
  [[nodiscard]] std::string finish() &&;

 private:
  std::size_t count_ = 0;
  std::string lines_;
};

// A header with the number of records and a line for each; one sentence when there are none. Line
// feeds separate the lines. Dates are UTC.
[[nodiscard]] std::string formatActivities(std::span<const Activity> activities);
[[nodiscard]] std::string formatAnnotations(std::span<const Annotation> annotations,
                                            const Clock& clock);
[[nodiscard]] std::string formatUsage(std::span<const AppUsageSummary> summaries);

}  // namespace tessum
