#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>

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
  command->footer(
      "Examples:\n"
      "  Tessum record\n"
      "  Tessum record --no-update-check\n"
      "  Tessum record --http");
  command->callback([&host, leavesUpdatesAlone, servesHTTP] {
    Recorder recorder(host);
    if (*servesHTTP) recorder.serveHTTP(host);
    if (!*leavesUpdatesAlone) recorder.watchForReleases();
    host.status = recorder.run();
  });
}

}  // namespace tessum
