#include "desktop/setup/setup_plan.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>

#include "desktop/recording/recorder_state.h"
#include "desktop/settings/settings_file.h"
#include "desktop/setup/assistant_steps.h"
#include "desktop/setup/desktop_helper.h"
#include "desktop/setup/login_start.h"
#include "desktop/setup/recorder_process.h"

namespace tessum {
namespace {

using Kind = SetupChange::Kind;

std::optional<SetupStep> settingsStep(const Host& host) {
  const std::string path = settingsPath(host.locations);
  if (host.files.exists(path)) return std::nullopt;
  return SetupStep{.plan =
                       "write a settings file with every setting explained; titles of private "
                       "browser windows are not kept",
                   .details = {path},
                   .carryOut = [path](SetupChanges& changes) {
                     changes.makeFile(path, std::string(settingsTemplate()));
                   }};
}

// Stops the recorder that setup or the login has started, but not one that ran before setup did.
void stopStartedRecorder(const Host& host, const SetupChange& change) {
  const std::string running = runningRecorder(host);
  if (running.empty() || running == change.content || stopRecorder(host)) return;
  throw std::runtime_error("The recorder does not end.");
}

void takeBack(const Host& host, const SetupChange& change) {
  switch (change.kind) {
    case Kind::service:
      return stopService(change.target);
    case Kind::recorder:
      return stopStartedRecorder(host, change);
    case Kind::shellExtension:
      return turnOffShellExtension(change.target);
    case Kind::assistant:
      return takeBackRegistration(change, host);
    case Kind::folder:
    case Kind::file:
    case Kind::link:
      return takeBackOnDisk(change, host);
  }
}

std::string planOf(const Host& host, const SetupChange& change) {
  if (isEditedSince(change, host)) return "leave " + change.target + ", which was edited since";
  switch (change.kind) {
    case Kind::service:
      return "stop " + change.target;
    case Kind::recorder:
      return "stop the recorder that it started";
    case Kind::shellExtension:
      return "turn off the extension " + change.target + " of GNOME Shell";
    case Kind::assistant:
      return undoPlan(change, host);
    case Kind::file:
      return (change.before ? "put back " : "remove ") + change.target;
    case Kind::folder:
    case Kind::link:
      break;
  }
  return "remove " + change.target;
}

}  // namespace

std::vector<SetupStep> setupSteps(const Host& host) {
  std::vector<SetupStep> steps;
  const auto add = [&](std::vector<SetupStep> more) {
    std::move(more.begin(), more.end(), std::back_inserter(steps));
  };
  // The recorder starts last, so that it finds its settings.
  if (auto step = settingsStep(host)) steps.push_back(std::move(*step));
  add(assistantSteps(host));
  add(desktopHelperSteps(host));
  add(loginSteps(host, !recorderState(host.locations).isRecording));
  return steps;
}

std::vector<SetupStep> undoSteps(const Host& host, const SetupChanges& changes) {
  std::vector<SetupStep> steps;
  for (auto change = changes.all().rbegin(); change != changes.all().rend(); ++change) {
    if (change->kind == Kind::folder) continue;
    const bool isOfAssistant = change->kind == Kind::assistant;
    steps.push_back(
        {.plan = planOf(host, *change),
         .details = {},
         .difference = isOfAssistant ? undoDifference(*change, host) : std::vector<std::string>(),
         .carryOut = [&host, change = *change](SetupChanges& noted) {
           takeBack(host, change);
           noted.remove(change);
         }});
  }
  return steps;
}

void finishUndo(const Host& host, SetupChanges& changes) {
  const auto folders = changes.all();
  changes.removeFile();
  for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
    takeBackOnDisk(*folder, host);
  }
  rereadServices();
}

}  // namespace tessum
