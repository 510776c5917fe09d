// The command that copies the record while it is being written.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// `host` must outlive the parsing of `app`.
void addBackupCommand(CLI::App& app, Host& host);

}  // namespace tessum
