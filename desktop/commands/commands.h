// The commands of the host program. Each function adds one or a few to `app`. The chosen command
// runs while `app` parses and sets the exit status in `host`, which must outlive the parsing.

#pragma once

#include "desktop/host/host.h"

namespace CLI {
class App;
}

namespace tessum {

void addSetupCommand(CLI::App& app, Host& host);
void addRecordCommand(CLI::App& app, Host& host);
void addServeCommand(CLI::App& app, Host& host);
void addPauseCommands(CLI::App& app, Host& host);  // pause and resume
void addStatusCommand(CLI::App& app, Host& host);
void addReportCommands(CLI::App& app, Host& host);  // day and notes
void addSearchCommand(CLI::App& app, Host& host);
void addUsageCommand(CLI::App& app, Host& host);
void addCategoryCommand(CLI::App& app, Host& host);
void addNoteCommand(CLI::App& app, Host& host);
void addTimelineCommand(CLI::App& app, Host& host);
void addDoctorCommand(CLI::App& app, Host& host);
void addExportCommand(CLI::App& app, Host& host);
void addImportCommand(CLI::App& app, Host& host);
void addForgetCommand(CLI::App& app, Host& host);
void addBackupCommand(CLI::App& app, Host& host);
void addSettingsCommand(CLI::App& app, Host& host);
void addClientCommands(CLI::App& app, Host& host);  // clients, install and uninstall
void addUpdateCommand(CLI::App& app, Host& host);
void addCompleteCommand(CLI::App& app, Host& host);

}  // namespace tessum
