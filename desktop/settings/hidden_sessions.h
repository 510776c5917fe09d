// What rules leave of sessions that were written down before there were such rules.

#pragma once

#include <vector>

#include "core/store/records.h"
#include "desktop/settings/rules.h"

namespace tessum {

// What `rules` leave of `session`, in the order of time: a piece for each stretch in which they
// leave the same. Just the session where they leave it as it is, nothing where they hide it. Of a
// session without an end its beginning decides.
[[nodiscard]] std::vector<Activity> leftOf(const Activity& session,
                                           const std::vector<HideRule>& rules);

}  // namespace tessum
