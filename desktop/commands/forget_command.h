// The command that deletes parts of the record; nothing else ever does.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// `host` must outlive the parsing of `app`.
void addForgetCommand(CLI::App& app, Host& host);

}  // namespace tessum
