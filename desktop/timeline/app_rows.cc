#include "desktop/timeline/app_rows.h"

#include <algorithm>
#include <numeric>

#include "desktop/text/text_layout.h"
#include "desktop/usage/day_history.h"

namespace tessum {

double secondsOf(const TimelineSession& session) {
  return secondsUntil(session.end, session.start, session.end);
}

double totalSeconds(const TimelineHistory& history) {
  double seconds = 0;
  for (const TimelineSession& session : history.sessions) seconds += secondsOf(session);
  return seconds;
}

std::vector<AppRow> appRows(const TimelineHistory& history, std::size_t most) {
  std::vector<double> seconds(history.apps.size());
  for (const TimelineSession& session : history.sessions) {
    seconds[history.subjects[session.subject].app] += secondsOf(session);
  }
  std::vector<std::size_t> order(seconds.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return seconds[a] != seconds[b] ? seconds[a] > seconds[b] : history.apps[a] < history.apps[b];
  });
  std::vector<AppRow> rows;
  for (const std::size_t app : order) {
    if (rows.size() < most) rows.push_back({.name = history.apps[app], .apps = {}});
    rows.back().apps.push_back(app);
    rows.back().seconds += seconds[app];
  }
  if (!rows.empty() && rows.back().apps.size() > 1) {
    rows.back().name = counted(rows.back().apps.size(), "other");
  }
  return rows;
}

}  // namespace tessum
