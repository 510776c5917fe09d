// The command that hands the record out, for other programs.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// `host` must outlive the parsing of `app`.
void addExportCommand(CLI::App& app, Host& host);

}  // namespace tessum
