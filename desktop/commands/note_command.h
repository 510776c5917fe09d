// The command that says what the user is working on.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// `host` must outlive the parsing of `app`.
void addNoteCommand(CLI::App& app, Host& host);

}  // namespace tessum
