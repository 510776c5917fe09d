#include "desktop/commands/commands.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <string_view>

#include "core/loop/system_main_loop.h"
#include "core/loop/termination_signals.h"
#include "core/update/urls.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/update/update_dialogue.h"
#include "desktop/update/updater.h"

namespace tessum {
namespace {

int runUpdate(const Locations& locations, bool downloads) {
  if (configuredBaseUrls().empty()) {
    complain(
        "this copy was built without a release service, so it never looks for newer versions\n");
    return kFailure;
  }
  SystemMainLoop loop;
  int status = kFailure;
  // An interrupt ends the command in an orderly way and leaves no partial download behind.
  const TerminationSignals signals(loop, [&] { loop.quit(); });
  Updater updater(loop, locations);
  UpdateDialogue::Output output{.tell = print, .complain = complain, .showProgress = {}};
  if (isatty(STDERR_FILENO) != 0) output.showProgress = showProgress;
  UpdateDialogue dialogue(updater.checker(), updater.opener(), downloads, systemDelivery(), output,
                          [&](int outcome) {
                            status = outcome;
                            loop.quit();
                          });
  dialogue.start();
  loop.run();
  return status;
}

}  // namespace

void addUpdateCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("update", "See whether there is a newer version");
  const auto downloads = std::make_shared<bool>(false);
  command->add_flag("--download", *downloads,
                    "download the newer version, where the system has it as a disk image");
  command->footer(
      "Examples:\n"
      "  Tessum update\n"
      "  Tessum update --download");
  command->callback([&host, downloads] { host.status = runUpdate(host.locations, *downloads); });
}

}  // namespace tessum
