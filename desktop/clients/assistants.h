// The assistant applications that the host program knows: the core's catalogue and more.

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/platform/files.h"
#include "core/platform/locations.h"
#include "desktop/clients/server_entry.h"

namespace tessum {

// One application, with its paths on this system.
struct Assistant {
  std::string_view id;    // for the command line, like "claude-code"
  std::string_view name;  // for people, like "Claude Code"
  ServerFormat format = {};

  // Every file that may hold our entry: first the one that the application reads, then any other
  // place that the core's catalogue names.
  std::vector<std::string> files = {};

  // Any of these exists where the application is on this computer.
  std::vector<std::string> signs = {};
};

// All of them, in display order.
[[nodiscard]] std::vector<Assistant> knownAssistants(const Locations& locations);

// The one with that name or id, in any case of its ASCII letters; absent for any other text.
[[nodiscard]] std::optional<Assistant> assistantNamed(std::string_view name,
                                                      const Locations& locations);

// Whether the application has left its configuration on this computer.
[[nodiscard]] bool isPresent(const Assistant& assistant, const Files& files);

// The files whose place depends on the system.
[[nodiscard]] std::string claudeDesktopFile(const Locations& locations);
[[nodiscard]] std::string visualStudioCodeFolder(const Locations& locations);
[[nodiscard]] std::string zedFolder(const Locations& locations);

}  // namespace tessum
