#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <string>

#include "desktop/commands/arguments.h"
#include "desktop/recording/recorder.h"

namespace tessum {

void addRecordCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("record", "Record which application is in front");
  const auto leavesUpdatesAlone = std::make_shared<bool>(false);
  command->add_flag("--no-update-check", *leavesUpdatesAlone,
                    "do not look for a newer version, now or every six hours");
  const auto servesHTTP = std::make_shared<bool>(false);
  command->add_flag("--http", *servesHTTP,
                    "also answer assistants over HTTP on port 7384: without a password, on every "
                    "network this computer is in, and to any web page that you open");
  const auto awayAfter = std::make_shared<std::string>("5m");
  command
      ->add_option("--away-after", *awayAfter,
                   "how long nothing is touched before you are away: 5m, 30s, or never")
      ->type_name("TIME")
      ->capture_default_str();
  const auto titles = std::make_shared<Titles>(Titles::each);
  const std::map<std::string, Titles> names{
      {"each", Titles::each}, {"last", Titles::last}, {"none", Titles::none}};
  command
      ->add_option("--titles", *titles,
                   "a session for each title, for each application with its last title, or none at "
                   "all: each, last or none")
      ->type_name("WHICH")
      ->transform(CLI::CheckedTransformer(names).description(""));
  command->footer(
      "Examples:\n"
      "  Tessum record\n"
      "  Tessum record --away-after 10m --titles last\n"
      "  Tessum record --no-update-check\n"
      "  Tessum record --http");
  command->callback([=, &host] {
    RecordingSettings settings{.awayAfter = std::nullopt, .titles = *titles};
    if (*awayAfter != "never") settings.awayAfter = durationArgument(*awayAfter);
    Recorder recorder(host, settings);
    if (*servesHTTP) recorder.serveHTTP(host);
    if (!*leavesUpdatesAlone) recorder.watchForReleases();
    host.status = recorder.run();
  });
}

}  // namespace tessum
