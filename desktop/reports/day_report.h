// Text reports for people, in local time.

#pragma once

#include <span>
#include <string>

#include "core/base/date.h"
#include "core/store/records.h"
#include "desktop/periods/period.h"
#include "desktop/text/text_layout.h"
#include "desktop/usage/day_history.h"

namespace tessum {

// What a report of so many days says when it has no session, perhaps since a filter left some out.
[[nodiscard]] std::string nothingRecordedText(bool leavesOutSome, int dayCount);

// Each report is a heading and a line for each entry, or a sentence when there are none. Each ends
// in a line feed.
[[nodiscard]] std::string dayReport(const DayHistory& history, const Paper& paper);

// The notes of `period`, which is `range`; those of several days with their dates.
[[nodiscard]] std::string notesReport(const Period& period, const DayRange& range,
                                      std::span<const Annotation> notes, Date now,
                                      const Paper& paper);

}  // namespace tessum
