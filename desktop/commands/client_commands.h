// The commands that register Tessum with assistant applications.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// Adds clients, install and uninstall. `host` must outlive the parsing of `app`.
void addClientCommands(CLI::App& app, Host& host);

}  // namespace tessum
