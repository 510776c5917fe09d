// Follows a screen saver or locker of the desktop. While it is active it hides the screen, whether
// or not it asks for a password.

#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "core/bus/bus.h"
#include "core/bus/bus_name.h"

namespace tessum {

// How to reach one kind. Its interface has the same name.
struct ScreenSaverKind {
  std::string name;
  std::vector<std::string> paths;  // where it may answer, the most likely first
};

// All known kinds.
[[nodiscard]] std::span<const ScreenSaverKind> screenSaverKinds();

// Main thread only.
class ScreenSaver {
 public:
  // Reports whether it is active, possibly repeatedly; one that exits is not. `session` and `kind`
  // must outlive it.
  ScreenSaver(Bus& session, const ScreenSaverKind& kind,
              std::function<void(bool isActive)> onActive);

 private:
  void start(const std::string& owner);
  void ask(std::size_t path);

  Bus& session_;
  const ScreenSaverKind& kind_;
  const std::function<void(bool)> onActive_;
  std::string owner_;  // of its name
  BusSlot changes_;
  BusSlot question_;
  BusName name_;
};

}  // namespace tessum
