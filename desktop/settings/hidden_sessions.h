// Applies rules to sessions that were recorded before the rules existed.

#pragma once

#include <vector>

#include "core/store/records.h"
#include "desktop/settings/rules.h"

namespace tessum {

// What `rules` keep of `session`, in order of time: a piece for each stretch with the same outcome.
// The session itself when they keep all of it, nothing when they hide it. A session without an end
// is judged by its start.
[[nodiscard]] std::vector<Activity> leftOf(const Activity& session,
                                           const std::vector<HideRule>& rules);

}  // namespace tessum
