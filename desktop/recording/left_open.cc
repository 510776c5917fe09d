#include "desktop/recording/left_open.h"

namespace tessum {
namespace {

// A session longer than that is not made by a guess.
constexpr double kLongestGuess = 2 * 3600;

// A sign of life is given at least as often while a recorder runs.
constexpr double kLongestSilence = 60;

// Sessions and their recorder's own beginning are timed one after the other.
constexpr double kSlack = 1;

// Whether `recorder` can have begun `session`, and was not there any more when the next one began.
bool isOf(const RecorderState& recorder, const Activity& session, const std::optional<Date>& next) {
  if (!recorder.lastSign) return false;
  const bool isTooEarly =
      recorder.since && secondsBetween(*recorder.since, session.startTime) < -kSlack;
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
