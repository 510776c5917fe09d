#include "desktop/setup/first_session.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "core/store/history.h"
#include "desktop/recording/recorder_state.h"

namespace tessum {
namespace {

constexpr auto kInterval = std::chrono::milliseconds(200);

// A recorder that does not run by then has ended at once.
constexpr double kStartSeconds = 5;

// How long to wait, when `seconds` are to spare. No session begins while the user is away.
double patience(const FirstSession& found, double seconds) {
  if (found.isAway) return 0;
  return found.isRecording ? seconds : std::min(seconds, kStartSeconds);
}

FirstSession look(const Host& host) {
  const RecorderState recorder = recorderState(host.locations);
  FirstSession found{.isRecording = recorder.isRecording};
  if (!recorder.isRecording || !recorder.since) return found;
  found.isAway = recorder.awaySince.has_value();
  try {
    History history(historyPath(host.locations), History::Access::read);
    const auto sessions = history.sessionsBegunIn(
        {movedBy(*recorder.since, -kStartSlack), movedBy(host.clock.now(), kStartSlack)});
    if (!sessions.empty()) found.session = sessions.back();
  } catch (const NoHistory&) {  // which is yet to come
  }
  return found;
}

}  // namespace

FirstSession waitForFirstSession(const Host& host, double seconds) {
  const auto begin = std::chrono::steady_clock::now();
  while (true) {
    auto found = look(host);
    const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - begin;
    if (found.session || waited.count() > patience(found, seconds)) return found;
    std::this_thread::sleep_for(kInterval);
  }
}

}  // namespace tessum
