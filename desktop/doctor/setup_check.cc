// Checks what matters first: whether Tessum records, now and from login on, and who knows of it.

#include <string>
#include <system_error>

#include "desktop/doctor/finding.h"
#include "desktop/setup/overview.h"

namespace tessum {
namespace {

constexpr char kSetUp[] =
    "\"Tessum setup\" shows what it will do, and asks before it does anything.";

Finding recordingFinding(const Overview& state) {
  const RecorderState& recorder = state.recorder;
  if (!recorder.isRecording) {
    return {"Nothing is recording.",
            state.loginStart ? "\"Tessum setup\" starts the recorder again."
                             : "\"Tessum setup\" starts recording, now and at each login."};
  }
  if (state.pause) {
    return {"The recorder is running, but recording is paused " +
                pauseText(*state.pause, state.now) + ".",
            "\"Tessum resume\" ends the pause.", true};
  }
  return {"Recording: " + recordingText(state) + ".", ""};
}

Finding loginFinding(const Overview& state) {
  if (state.loginStart) return {"Recording starts at each login, " + *state.loginStart + ".", ""};
  return {"Recording does not start by itself at login.", kSetUp, true};
}

Finding assistantsFinding(const Overview& state) {
  if (state.informed.empty() && state.uninformed.empty()) {
    return {"No assistant was found on this computer.",
            "\"Tessum install --file\" registers Tessum in the file of any other.", true};
  }
  if (state.uninformed.empty()) return {assistantsText(state) + ".", ""};
  return {assistantsText(state) + ".", kSetUp, true};
}

}  // namespace

std::vector<Finding> checkSetup(const Host& host) {
  try {
    const Overview state = overview(host);
    return {recordingFinding(state),
            loginFinding(state),
            assistantsFinding(state),
            {"Next: " + nextText(state) + ".", ""}};
  } catch (const std::system_error& error) {
    return {{std::string("Cannot tell whether Tessum is recording: ") + error.what(),
             "See below what is wrong with the folder."}};
  }
}

}  // namespace tessum
