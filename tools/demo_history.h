// Generates an invented history.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/store/records.h"

namespace tessum {

struct DemoOptions {
  int days = 14;            // whole days before today, at least 0; today so far is added
  int sessionsPerDay = 90;  // on average, at least 1; workdays have more, weekends fewer
  std::uint64_t seed = 1;   // each seed gives another person
};

// Sessions and annotations, each ordered by start.
struct DemoDay {
  std::vector<Activity> activities;
  std::vector<Annotation> annotations;
};

// The days of the history, oldest first; the last one is today up to `now`, and its last session
// and annotation are still open. The same arguments give the same history on every system.
// Applications, titles and people are invented.
[[nodiscard]] std::vector<DemoDay> demoHistory(const DemoOptions& options, Date now,
                                               const Calendar& calendar);

// Writes `history` into the database at `path`, which is created if missing. Throws
// std::runtime_error when writing fails, or when the database already holds a history, so that a
// real one is never mixed with an invented one; then nothing has been written.
void writeDemoHistory(const std::string& path, const std::vector<DemoDay>& history,
                      const Calendar& calendar);

}  // namespace tessum
