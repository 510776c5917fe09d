#include "desktop/usage/finds.h"

#include <algorithm>

#include "desktop/usage/category_finder.h"
#include "desktop/usage/day_history.h"

namespace tessum {

void Finds::add(const Activity& session, Date now) {
  const double seconds = secondsUntil(now, session);
  Find& find = finds_[windowKey(session)];
  if (find.total.sessions == 0) {
    find.appName = session.appName;
    find.bundleID = session.bundleID;
    find.title = session.title;
    find.last = session.startTime;
  }
  if (secondsBetween(find.last, session.startTime) > 0) find.last = session.startTime;
  for (Total* total : {&find.total, &total_}) {
    total->seconds += seconds;
    total->sessions += 1;
  }
}

std::vector<Find> Finds::newestFirst() const {
  std::vector<Find> finds;
  finds.reserve(finds_.size());
  for (const auto& entry : finds_) finds.push_back(entry.second);
  std::sort(finds.begin(), finds.end(), [](const Find& a, const Find& b) {
    if (a.last != b.last) return secondsBetween(b.last, a.last) > 0;
    return a.appName != b.appName ? a.appName < b.appName : a.title < b.title;
  });
  return finds;
}

}  // namespace tessum
