#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "core/store/history.h"
#include "desktop/command_line/standard_output.h"

namespace tessum {

void addBackupCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("backup", "Copy the history, even while recording");
  const auto path = std::make_shared<std::string>();
  command->add_option("FILE", *path, "the new copy; an existing file is never overwritten")
      ->type_name("")
      ->required();
  command->footer(
      "The command checks the copy. To restore it, stop recording and put it in the place of the\n"
      "history; \"Tessum status\" shows where that is.\n\n"
      "Examples:\n"
      "  Tessum backup tessum.db\n"
      "  Tessum backup \"$HOME/tessum-$(date +%F).db\"");
  command->callback([&host, path] {
    History history(historyPath(host.locations), History::Access::read);
    history.copyTo(*path);
    print("The history was copied to " + *path + ".\n");
  });
}

}  // namespace tessum
