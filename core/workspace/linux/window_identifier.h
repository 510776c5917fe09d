// Tells which application the active window belongs to, for one window after another.

#pragma once

#include <optional>
#include <string>

#include "core/workspace/linux/desktop_entries.h"
#include "core/workspace/linux/front_window.h"

namespace tessum {

// Not thread-safe.
class WindowIdentifier {
 public:
  explicit WindowIdentifier(DesktopEntries entries);

  // The name of this machine, for WindowDescription::clientMachine.
  [[nodiscard]] const std::string& hostName() const { return hostName_; }

  // The application of the window with that description; the title is left absent. Desktop entries
  // that have changed are read again, unless the description is the same as before.
  [[nodiscard]] const FrontWindow& identify(const WindowDescription& description);

 private:
  DesktopEntries entries_;
  const std::string hostName_;
  std::optional<WindowDescription> description_;  // of the window identified last
  FrontWindow identified_;
};

}  // namespace tessum
