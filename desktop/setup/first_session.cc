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

FirstSession look(const Host& host) {
  const RecorderState recorder = recorderState(host.locations);
  if (!recorder.isRecording || !recorder.since) return {.isRecording = recorder.isRecording};
  try {
    History history(historyPath(host.locations), History::Access::read);
    const auto sessions = history.sessionsBegunIn(
        {movedBy(*recorder.since, -kStartSlack), movedBy(host.clock.now(), kStartSlack)});
    if (sessions.empty()) return {.isRecording = true};
    return {.isRecording = true, .session = sessions.back()};
  } catch (const NoHistory&) {
    return {.isRecording = true};
  }
}

}  // namespace

FirstSession waitForFirstSession(const Host& host, double seconds) {
  const auto begin = std::chrono::steady_clock::now();
  while (true) {
    auto found = look(host);
    const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - begin;
    const double patience = found.isRecording ? seconds : std::min(seconds, kStartSeconds);
    if (found.session || waited.count() > patience) return found;
    std::this_thread::sleep_for(kInterval);
  }
}

}  // namespace tessum
