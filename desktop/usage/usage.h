// What the sessions of a period add up to.

#pragma once

#include <optional>
#include <vector>

#include "core/store/history.h"
#include "desktop/periods/period.h"
#include "desktop/periods/report_days.h"
#include "desktop/usage/session_filter.h"
#include "desktop/usage/usage_tally.h"

namespace tessum {

struct UsageQuery {
  Period period;
  std::vector<Grouping> by = {Grouping::app};  // one or two
  SessionFilter filter = {};
};

// Groups come in the order of time where they have one, and otherwise the largest first.
struct Usage {
  Period period;
  DayRange range;
  Total total;
  std::vector<UsageGroup> groups;
  std::vector<UsageGroup> uncategorised;  // the titles without a category, by category alone
  std::vector<UsageGroup> days;           // those on which something can have been recorded
  std::optional<Total> before;            // of as many days right before; absent before year 1
  bool leavesOutSome = false;             // whether the filter left out sessions
};

// Reads the sessions of the period and, if it has several days, of as many days before it.
[[nodiscard]] Usage readUsage(History& history, const ReportDays& days, const Rules& rules,
                              const UsageQuery& query, Date now);

// The time of each rule for a category that took some, numbered from 1, and, with the number 0, the
// time without a category; each with its titles.
[[nodiscard]] std::vector<UsageGroup> readUsageOfRules(History& history, const Rules& rules,
                                                       const DayRange& range, Date now);

// Whether each of `groups` is one of the `most` largest, or any where `most` is 0. Of equal ones
// the first.
[[nodiscard]] std::vector<bool> areLargest(const std::vector<UsageGroup>& groups, std::size_t most);

}  // namespace tessum
