// Tessum, the host program: records what is in front, and lets a person use the history.

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <string>

#include "core/base/text.h"
#include "core/platform/app_info.h"
#include "core/store/database_error.h"
#include "core/store/history.h"
#include "desktop/command.h"
#include "desktop/commands/command_line.h"
#include "desktop/commands/commands.h"
#include "desktop/commands/standard_output.h"
#include "desktop/leftovers.h"
#include "desktop/reports/text_layout.h"
#include "desktop/settings/settings_reader.h"

namespace tessum {
namespace {

int refuse(const std::string& mistake) {
  std::fprintf(stderr, "Tessum: %s\nRun with --help for usage.\n",
               printable(validUtf8(mistake)).c_str());
  return kUsage;
}

int runCommand(int argc, char** argv) {
  const SystemClock clock;
  const SystemCalendar calendar;
  const SystemLocations locations;
  const SystemFiles files;
  const SystemUrlOpener opener;
  Host host{clock, calendar, locations, files, opener};

  CLI::App app("Keeps a history of your day on this computer, for you and your AI assistants.",
               "Tessum");
  app.require_subcommand(1);
  app.set_version_flag("--version", "Tessum " + SystemAppInfo().version().value_or("unknown"),
                       "print the version and exit");
  app.footer(
      "\"Tessum COMMAND --help\" has examples. The exit status is 0 on success, 1 when the\n"
      "command failed and 2 when the command line or the settings were wrong.");
  addSetupCommand(app, host);
  addRecordCommand(app, host);
  addServeCommand(app, host);
  addPauseCommands(app, host);
  addStatusCommand(app, host);
  addReportCommands(app, host);
  addSearchCommand(app, host);
  addUsageCommand(app, host);
  addCategoryCommand(app, host);
  addNoteCommand(app, host);
  addTimelineCommand(app, host);
  addDoctorCommand(app, host);
  addExportCommand(app, host);
  addImportCommand(app, host);
  addForgetCommand(app, host);
  addBackupCommand(app, host);
  addSettingsCommand(app, host);
  addClientCommands(app, host);
  addUpdateCommand(app, host);
  addCompleteCommand(app, host);
  addHelpCommand(app);
  removeLeftovers(locations);
  try {
    requireKnownCommands(app, argc, argv);
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    print(app.help());
  } catch (const CLI::CallForVersion& version) {
    print(version.what() + std::string("\n"));
  } catch (const CLI::ExtrasError& error) {
    return refuse(unexpectedText(app, error));
  } catch (const CLI::ParseError& error) {
    return refuse(error.what());
  }
  return host.status;
}

}  // namespace
}  // namespace tessum

int main(int argc, char** argv) {
  try {
    return tessum::runCommand(argc, argv);
  } catch (const tessum::DatabaseError& error) {
    std::fprintf(stderr, "Tessum: %s\n", error.what());
    std::fprintf(stderr, "%s\n", tessum::remedy(error).c_str());
    return tessum::kFailure;
  } catch (const tessum::SettingsError& error) {
    std::fprintf(stderr, "Tessum: %s\n", tessum::printable(error.what()).c_str());
    return tessum::kUsage;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "Tessum: %s\n", error.what());
    return tessum::kFailure;
  }
}
