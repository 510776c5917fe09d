// Ends sessions that a recorder could not end.

#pragma once

#include <optional>
#include <vector>

#include "core/base/date.h"
#include "core/store/history.h"
#include "core/store/records.h"
#include "desktop/recording/recorder_state.h"

namespace tessum {

// When `session`, which was left open, ended: when its recorder was last known to run, if it was
// `recorder`, the last one that ran; or when the next session began, if that was within two hours.
// Absent when neither is known: a guess could turn a night into one long session. Never before the
// session began. Throws DatabaseError.
[[nodiscard]] std::optional<Date> endOfLeftOpen(History& history, const Activity& session,
                                                const RecorderState& recorder);

// Ends every open session whose end is known, and returns those. Throws DatabaseError.
std::vector<Activity> endLeftOpen(History& history, const RecorderState& recorder);

}  // namespace tessum
