#include "desktop/settings/hidden_sessions.h"

#include <optional>

namespace tessum {
namespace {

Window windowOf(const Activity& session) {
  return {.app = session.appName, .identifier = session.bundleID, .title = session.title};
}

}  // namespace

std::vector<Activity> leftOf(const Activity& session, const std::vector<HideRule>& rules) {
  std::vector<Activity> pieces;
  std::optional<Kept> before;
  for (std::optional<Date> start = session.startTime; start;) {
    auto end = session.endTime ? nextEdge(rules, *start) : std::nullopt;
    const bool isLast = !end || secondsBetween(*end, *session.endTime) <= 0;
    if (isLast) end = session.endTime;
    const Kept kept = judge(rules, windowOf(session), wallTime(*start)).kept;
    if (kept != Kept::nothing && kept != before) {
      pieces.push_back(session);
      pieces.back().startTime = *start;
      if (kept == Kept::app) pieces.back().title.reset();
    }
    if (kept != Kept::nothing) pieces.back().endTime = end;
    before = kept;
    start = isLast ? std::nullopt : end;
  }
  return pieces;
}

}  // namespace tessum
