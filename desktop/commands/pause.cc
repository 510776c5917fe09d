#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "desktop/command_line/arguments.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/recording/recorder_state.h"
#include "desktop/settings/pause.h"
#include "desktop/settings/schedule.h"

namespace tessum {
namespace {

// A longer pause should have no end time.
constexpr double kLongestPause = 366 * 86400.0;

// The arguments of `pause`: none, a duration, or "until" and a time of day.
Pause pauseArgument(const std::vector<std::string>& words, Date now) {
  if (words.empty()) return {};
  if (words.front() != "until") {
    if (words.size() > 1) throw CLI::ValidationError("say how long, or until when, not both");
    const double seconds = durationArgument(words.front());
    if (seconds > kLongestPause) {
      throw CLI::ValidationError(
          "a pause lasts at most a year; without a time, it lasts until resume");
    }
    return {movedBy(now, seconds)};
  }
  const auto minute = words.size() == 2 ? parseTimeOfDay(words[1]) : std::nullopt;
  if (!minute) throw CLI::ValidationError("say until when, as in until 14:00");
  constexpr int kMinutesOfDay = 24 * 60;
  return {nextTimeOfDay(*minute % kMinutesOfDay, now)};
}

void pause(const Host& host, const std::vector<std::string>& words) {
  const Date now = host.clock.now();
  const Pause pause = pauseArgument(words, now);
  beginPause(pause, host.locations, host.files);
  print("Nothing is recorded " + pauseText(pause, now) + ".\n");
}

void resume(const Host& host) {
  const bool wasPaused = pauseAt(host.clock.now(), host.locations, host.files).has_value();
  endPause(host.locations);
  const bool isRecording = recorderState(host.locations).isRecording;
  print(std::string(wasPaused ? "The pause has ended." : "There is no pause.") +
        (isRecording ? "" : " No recorder is running; \"Tessum record\" starts one.") + "\n");
}

}  // namespace

void addPauseCommands(CLI::App& app, Host& host) {
  auto* pauseCommand = app.add_subcommand("pause", "Record nothing for a while");
  const auto words = std::make_shared<std::vector<std::string>>();
  pauseCommand
      ->add_option(
          "TIME", *words,
          "how long (1h30m, 45m or 90), or until when, as in until 14:00; without it, until "
          "resume")
      ->type_name("")
      ->expected(0, -1);
  pauseCommand->footer(
      "A running recorder stops writing at once and resumes by itself. The pause also applies to\n"
      "a recorder that is started during it.\n\n"
      "Examples:\n"
      "  Tessum pause\n"
      "  Tessum pause 30m\n"
      "  Tessum pause until 14:00");
  pauseCommand->callback([&host, words] { pause(host, *words); });

  auto* resumeCommand = app.add_subcommand("resume", "End a pause");
  resumeCommand->footer(
      "Example:\n"
      "  Tessum resume");
  resumeCommand->callback([&host] { resume(host); });
}

}  // namespace tessum
