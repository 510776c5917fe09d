#include "desktop/record_command.h"

#include <CLI/CLI.hpp>

#include "desktop/recorder.h"

namespace tessum {

void addRecordCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand("record", "Record which application is in front");
  command->callback([&host] { host.status = Recorder(host).run(); });
}

}  // namespace tessum
