// Sessions that a recorder could not end.

#pragma once

#include <optional>
#include <vector>

#include "core/base/date.h"
#include "core/store/history.h"
#include "core/store/records.h"

namespace tessum {

// When `session`, which has been left open, ended: at `lastSign`, the last sign of life of the
// recorder, if that was given between its beginning and the next session's, or where the next one
// began if that was within two hours. Absent when neither is known: a guess could make a night one
// long session. Never before it began. Throws DatabaseError.
[[nodiscard]] std::optional<Date> endOfLeftOpen(History& history, const Activity& session,
                                                const std::optional<Date>& lastSign);

// Ends every open session of which that is known, and returns them. Throws DatabaseError.
std::vector<Activity> endLeftOpen(History& history, const std::optional<Date>& lastSign);

}  // namespace tessum
