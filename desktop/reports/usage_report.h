// The reports of a period's usage, for people.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "desktop/settings/rules.h"
#include "desktop/text/text_layout.h"
#include "desktop/usage/usage.h"

namespace tessum {

// A heading and a line for each group; before them, for several days, a line for each day, their
// average, and the change from the days before. A sentence where nothing was recorded. Of each list
// of groups the first `most` are shown, and the others in one line; 0 shows all.
[[nodiscard]] std::string usageReport(const Usage& usage, const std::vector<Grouping>& by,
                                      std::size_t most, const Paper& paper);

// What each rule for a category took, with its largest titles, and what none took.
[[nodiscard]] std::string ruleReport(const std::vector<UsageGroup>& groups, const Rules& rules,
                                     const Period& period, const Paper& paper);

}  // namespace tessum
