#include "desktop/commands/commands.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "core/store/history.h"
#include "desktop/commands/standard_output.h"

namespace tessum {

void addBackupCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("backup", "Copy the history, also while it is being written");
  const auto path = std::make_shared<std::string>();
  command->add_option("FILE", *path, "where the copy goes; a file that exists is left as it is")
      ->type_name("")
      ->required();
  command->footer(
      "The copy is checked before it is called done. To go back to it, stop recording and put it\n"
      "in the place of the history, which \"Tessum status\" shows.\n\n"
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
