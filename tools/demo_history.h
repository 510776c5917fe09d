// A made-up history: what a person at a computer might have recorded.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/store/records.h"

namespace tessum {

struct DemoOptions {
  int days = 14;            // whole days before today, at least 0; today so far comes on top
  int sessionsPerDay = 90;  // on average, at least 1; workdays have more, weekends fewer
  std::uint64_t seed = 1;   // another seed, another person
};

// Sessions and annotations, each in the order of their beginnings.
struct DemoDay {
  std::vector<Activity> activities;
  std::vector<Annotation> annotations;
};

// The days of the history, the oldest first; the last one is today up to `now`, and its last
// session and annotation are still open. The same arguments give the same history on any system.
// Applications, titles and people are invented.
[[nodiscard]] std::vector<DemoDay> demoHistory(const DemoOptions& options, Date now,
                                               const Calendar& calendar);

// Writes `history` into the database at `path`, which is created where it is missing. Throws
// std::runtime_error when the database holds a history already, so that nobody's own is mixed
// with an invented one, and when writing fails; then nothing has been written.
void writeDemoHistory(const std::string& path, const std::vector<DemoDay>& history,
                      const Calendar& calendar);

}  // namespace tessum
