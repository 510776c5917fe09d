// The commands that show what was recorded: day, usage, notes and search.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// `host` must outlive the parsing of `app`.
void addReportCommands(CLI::App& app, Host& host);

}  // namespace tessum
