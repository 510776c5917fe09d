// Tessum: records what is in front, and everything that a person does with the record.

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

#include "desktop/client_commands.h"
#include "desktop/command.h"
#include "desktop/record_command.h"
#include "desktop/update_command.h"

namespace tessum {
namespace {

int runCommand(int argc, char** argv) {
  const SystemClock clock;
  const SystemCalendar calendar;
  const SystemLocations locations;
  const SystemFiles files;
  Host host{clock, calendar, locations, files};

  CLI::App app("Keeps a record of your day on this computer, for you and your AI assistants.",
               "Tessum");
  app.require_subcommand(1);
  addClientCommands(app, host);
  addRecordCommand(app, host);
  addUpdateCommand(app, host);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kSuccess : kUsage;
  }
  return host.status;
}

}  // namespace
}  // namespace tessum

int main(int argc, char** argv) {
  try {
    return tessum::runCommand(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "Tessum: %s\n", error.what());
    return tessum::kFailure;
  }
}
