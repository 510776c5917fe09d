// The reports that language models read. They print what they are given, in its order.

#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "core/platform/clock.h"
#include "core/store/records.h"

namespace tessum {

// The report of formatActivities(), made from one session after another. Not thread-safe.
class ActivityReport {
 public:
  void add(const Activity& activity);

  // The whole report; the object is used up.
  [[nodiscard]] std::string finish() &&;

 private:
  std::size_t count_ = 0;
  std::string lines_;
};

// A header with the number of records and a line for each; one sentence where there are none.
// Lines are joined by a line feed, with none at the end. Dates are UTC.
[[nodiscard]] std::string formatActivities(std::span<const Activity> activities);
[[nodiscard]] std::string formatAnnotations(std::span<const Annotation> annotations,
                                            const Clock& clock);
[[nodiscard]] std::string formatUsage(std::span<const AppUsageSummary> summaries);

}  // namespace tessum
