// The command that records what is in front.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// Adds "record" to `app`. When it is chosen, it runs until it is told to end and leaves its
// outcome in `host`.
void addRecordCommand(CLI::App& app, Host& host);

}  // namespace tessum
