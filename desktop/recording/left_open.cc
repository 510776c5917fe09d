#include "desktop/recording/left_open.h"

namespace tessum {
namespace {

// We never guess that a session lasted longer than this.
constexpr double kLongestGuess = 2 * 3600;

// A running recorder touches its lock's file at least this often.
constexpr double kLongestSilence = 60;

// Whether `recorder` may have begun `session` and had stopped when the next one began.
bool isOf(const RecorderState& recorder, const Activity& session, const std::optional<Date>& next) {
  if (!recorder.lastSign) return false;
  const bool isTooEarly =
      recorder.since && secondsBetween(*recorder.since, session.startTime) < -kStartSlack;
  return !isTooEarly && secondsBetween(*recorder.lastSign, session.startTime) <= kLongestSilence &&
         (!next || secondsBetween(*recorder.lastSign, *next) >= 0);
}

}  // namespace

std::optional<Date> endOfLeftOpen(History& history, const Activity& session,
                                  const RecorderState& recorder) {
  const auto next = history.startOfNext(session);
  if (isOf(recorder, session, next)) {
    const bool isAfter = secondsBetween(session.startTime, *recorder.lastSign) >= 0;
    return isAfter ? *recorder.lastSign : session.startTime;
  }
  if (next && secondsBetween(session.startTime, *next) <= kLongestGuess) return next;
  return std::nullopt;
}

std::vector<Activity> endLeftOpen(History& history, const RecorderState& recorder) {
  std::vector<Activity> ended;
  for (Activity& session : history.openSessions()) {
    session.endTime = endOfLeftOpen(history, session, recorder);
    if (!session.endTime) continue;
    history.endSession(session.id.value_or(0), *session.endTime);
    ended.push_back(std::move(session));
  }
  return ended;
}

}  // namespace tessum
