// The command that looks for what would keep things from working.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// `host` must outlive the parsing of `app`.
void addDoctorCommand(CLI::App& app, Host& host);

}  // namespace tessum
