#include "desktop/record_command.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "desktop/recorder.h"

namespace tessum {

void addRecordCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("record", "Record which application is in front");
  const auto leavesUpdatesAlone = std::make_shared<bool>(false);
  command->add_flag("--no-update-check", *leavesUpdatesAlone,
                    "do not look for a newer version, now or every six hours");
  command->footer(
      "Examples:\n"
      "  Tessum record\n"
      "  Tessum record --no-update-check");
  command->callback([&host, leavesUpdatesAlone] {
    Recorder recorder(host);
    if (!*leavesUpdatesAlone) recorder.watchForReleases();
    host.status = recorder.run();
  });
}

}  // namespace tessum
