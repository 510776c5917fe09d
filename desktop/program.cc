#include "desktop/program.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <string>

#include "core/base/text.h"
#include "core/platform/app_info.h"
#include "desktop/command_line/command_line.h"
#include "desktop/command_line/standard_output.h"
#include "desktop/commands/commands.h"
#include "desktop/host/host.h"
#include "desktop/leftovers.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

int refuse(const std::string& mistake) {
  std::fprintf(stderr, "Tessum: %s\nRun with --help for usage.\n",
               printable(validUtf8(mistake)).c_str());
  return kUsage;
}

}  // namespace

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
  removeLeftovers(host);
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

}  // namespace tessum
