#include "desktop/recording/left_open.h"

namespace tessum {
namespace {

// A session longer than that is not made by a guess.
constexpr double kLongestGuess = 2 * 3600;

// A sign of life is given at least as often while a recorder runs.
constexpr double kLongestSilence = 60;

// Whether a recorder that gave its last sign of life at `lastSign` can have begun `session`, and
// was not there any more when the next one began.
bool isOfThatRecorder(Date lastSign, const Activity& session, const std::optional<Date>& next) {
  return secondsBetween(lastSign, session.startTime) <= kLongestSilence &&
         (!next || secondsBetween(lastSign, *next) >= 0);
}

}  // namespace

std::optional<Date> endOfLeftOpen(History& history, const Activity& session,
                                  const std::optional<Date>& lastSign) {
  const auto next = history.startOfNext(session);
  if (lastSign && isOfThatRecorder(*lastSign, session, next)) {
    return secondsBetween(session.startTime, *lastSign) >= 0 ? *lastSign : session.startTime;
  }
  if (next && secondsBetween(session.startTime, *next) <= kLongestGuess) return next;
  return std::nullopt;
}

std::vector<Activity> endLeftOpen(History& history, const std::optional<Date>& lastSign) {
  std::vector<Activity> ended;
  for (Activity& session : history.openSessions()) {
    session.endTime = endOfLeftOpen(history, session, lastSign);
    if (!session.endTime) continue;
    history.endSession(session.id.value_or(0), *session.endTime);
    ended.push_back(std::move(session));
  }
  return ended;
}

}  // namespace tessum
