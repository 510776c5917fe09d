// The command that says what is going on.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// `host` must outlive the parsing of `app`.
void addStatusCommand(CLI::App& app, Host& host);

}  // namespace tessum
