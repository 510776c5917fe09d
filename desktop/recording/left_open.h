// Sessions that a recorder could not end.

#pragma once

#include <optional>
#include <vector>

#include "core/base/date.h"
#include "core/store/history.h"
#include "core/store/records.h"
#include "desktop/recording/recorder_state.h"

namespace tessum {

// When `session`, which has been left open, ended: where its recorder was last known to live, if
// `recorder`, the last one that ran, is the one; or where the next session began, if that was
// within two hours. Absent when neither is known: a guess could make a night one long session.
// Never before it began. Throws DatabaseError.
[[nodiscard]] std::optional<Date> endOfLeftOpen(History& history, const Activity& session,
                                                const RecorderState& recorder);

// Ends every open session of which that is known, and returns them. Throws DatabaseError.
std::vector<Activity> endLeftOpen(History& history, const RecorderState& recorder);

}  // namespace tessum
