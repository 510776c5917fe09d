#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "desktop/recording/recorder.h"

namespace tessum {
namespace {

// Parses the options' texts; an empty one was not given.
RecordingOptions recordingOptions(const std::string& awayAfter, const std::string& titles) {
  RecordingOptions options;
  if (!awayAfter.empty()) options.awayAfter = parseAwayAfter(awayAfter);
  if (!awayAfter.empty() && !options.awayAfter) {
    throw CLI::ValidationError("unknown duration \"" + awayAfter +
                               "\"; write it as 30s, 5m or 1h30m, up to 24h, or never");
  }
  if (!titles.empty()) options.titles = parseTitles(titles);
  if (!titles.empty() && !options.titles) {
    throw CLI::ValidationError("unknown titles \"" + titles + "\"; say each, last or none");
  }
  return options;
}

}  // namespace

void addRecordCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("record", "Record which application is in front");
  const auto leavesUpdatesAlone = std::make_shared<bool>(false);
  command->add_flag("--no-update-check", *leavesUpdatesAlone,
                    "do not look for a newer version, now or every six hours");
  const auto servesHTTP = std::make_shared<bool>(false);
  command->add_flag("--http", *servesHTTP,
                    "also answer assistants on this computer over HTTP on port 7384, without a "
                    "password, but no web page and no other computer");
  const auto isOpen = std::make_shared<bool>(false);
  command->add_flag("--http-open", *isOpen,
                    "the same for whoever asks: without a password, on every network this computer "
                    "is in, and to any web page that you open");
  const auto awayAfter = std::make_shared<std::string>();
  command
      ->add_option(
          "--away-after", *awayAfter,
          "how long nothing is touched before you are away: 30s, 5m or never; usually what "
          "the settings say")
      ->type_name("TIME");
  const auto titles = std::make_shared<std::string>();
  command
      ->add_option("--titles", *titles,
                   "a session for each title, for each application with its last title, or none at "
                   "all: each, last or none; usually what the settings say")
      ->type_name("WHICH");
  command->footer(
      "Examples:\n"
      "  Tessum record\n"
      "  Tessum record --away-after 10m --titles last\n"
      "  Tessum record --no-update-check\n"
      "  Tessum record --http");
  command->callback([=, &host] {
    Recorder recorder(host, recordingOptions(*awayAfter, *titles));
    if (*servesHTTP || *isOpen) {
      recorder.serveHTTP(*isOpen ? OpenTo::everyone : OpenTo::thisComputer);
    }
    if (!*leavesUpdatesAlone) recorder.watchForReleases();
    host.status = recorder.run();
  });
}

}  // namespace tessum
