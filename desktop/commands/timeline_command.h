// The command that draws a day.

#pragma once

#include "desktop/command.h"

namespace CLI {
class App;
}

namespace tessum {

// `host` must outlive the parsing of `app`.
void addTimelineCommand(CLI::App& app, Host& host);

}  // namespace tessum
