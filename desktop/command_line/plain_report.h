// The reports of the assistants' tools, for a person.

#pragma once

#include <string>

#include "core/mcp/tool_arguments.h"
#include "desktop/host/host.h"

namespace CLI {
class App;
}

namespace tessum {

// Adds --plain, which sets `isPlain` and promises the text of `tool`.
void addPlainOption(CLI::App& command, bool& isPlain, const std::string& tool);

// The report of an assistant's tool, made by the same engine.
[[nodiscard]] std::string toolText(const Host& host, const char* tool,
                                   const ToolArguments& arguments);

// Prints what `tool` says of the one day that `period` means, which begins at midnight. Throws
// CLI::ValidationError for several days.
void showPlain(const Host& host, const std::string& period, const char* tool);

}  // namespace tessum
