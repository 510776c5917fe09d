// The command that looks for a newer release.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// `host` must outlive the parsing of `app`.
void addUpdateCommand(CLI::App& app, Host& host);

}  // namespace tessum
