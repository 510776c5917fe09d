#include "desktop/setup/recorder_process.h"

#include <signal.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "core/platform/file_lock.h"
#include "core/platform/spawn.h"
#include "desktop/host/own_program.h"
#include "desktop/recording/recorder_state.h"

namespace tessum {
namespace {

constexpr auto kStopPatience = std::chrono::seconds(10);
constexpr auto kStopInterval = std::chrono::milliseconds(50);

}  // namespace

void startRecorder(const Host& host) {
  const std::string program = ownProgram(host.locations);
  // A recorder in the folder of this command would keep it from being removed or unmounted.
  std::error_code ignored;
  std::filesystem::current_path(host.locations.homeFolder(), ignored);
  static_cast<void>(startProgram({program, "record"}));
}

std::string runningRecorder(const Host& host) {
  const RecorderState state = recorderState(host.locations);
  return state.isRecording && state.since ? std::to_string(state.since->secondsSince1970) : "";
}

bool stopRecorder(const Host& host) {
  const auto deadline = std::chrono::steady_clock::now() + kStopPatience;
  bool isAsked = false;
  while (true) {
    const auto lock = readLockFile(recorderFile(host.locations));
    if (!lock || !lock->isHeld) return true;
    if (!isAsked && lock->holder) isAsked = kill(*lock->holder, SIGTERM) == 0;
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(kStopInterval);
  }
}

}  // namespace tessum
