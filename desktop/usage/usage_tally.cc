#include "desktop/usage/usage_tally.h"

#include <algorithm>
#include <map>
#include <utility>

namespace tessum {

UsageTally::UsageTally(std::unique_ptr<Dimension> first, std::unique_ptr<Dimension> second)
    : first_(std::move(first)), second_(std::move(second)) {}

void UsageTally::Cell::add(double seconds, std::int64_t session) {
  total.seconds += seconds;
  if (lastSession != session) total.sessions += 1;
  lastSession = session;
}

void UsageTally::add(const Activity& session, Date start, Date end) {
  const std::int64_t number = ++total_.sessions;
  total_.seconds += std::max(0.0, secondsBetween(start, end));
  Date at = start;
  do {
    const GroupSpan span = first_->spanOf(session, at);
    Date next = secondsBetween(span.end, end) > 0 ? span.end : end;
    int part = 0;
    if (second_) {
      const GroupSpan partSpan = second_->spanOf(session, at);
      if (secondsBetween(partSpan.end, next) > 0) next = partSpan.end;
      part = partSpan.group;
    }
    const double seconds = std::max(0.0, secondsBetween(at, next));
    const auto group = static_cast<std::size_t>(span.group);
    if (cells_.size() <= group) cells_.resize(group + 1);
    cells_[group].add(seconds, number);
    if (second_) {
      if (parts_.size() <= group) parts_.resize(group + 1);
      parts_[group][part].add(seconds, number);
    }
    at = next;
  } while (secondsBetween(at, end) > 0);
}

std::vector<UsageGroup> UsageTally::groups() const {
  std::vector<UsageGroup> groups;
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    if (cells_[i].total.sessions == 0) continue;
    const int number = static_cast<int>(i);
    UsageGroup group{number, first_->nameOf(number), cells_[i].total};
    if (second_) {
      const std::map<int, Cell> parts(parts_[i].begin(), parts_[i].end());
      for (const auto& [part, cell] : parts) {
        group.groups.push_back({part, second_->nameOf(part), cell.total});
      }
    }
    groups.push_back(std::move(group));
  }
  return groups;
}

}  // namespace tessum
