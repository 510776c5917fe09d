// What our helper in a compositor says of the window that has the focus: the extension of GNOME
// Shell or the script of KWin.

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/bus/bus_message.h"
#include "core/workspace/linux/front_tracker.h"
#include "core/workspace/linux/front_window.h"
#include "core/workspace/linux/window_identifier.h"

namespace tessum {

// The texts are valid UTF-8 of any length; they are empty, and the process is 0, where the window
// does not say.
struct FocusedWindow {
  std::string applicationId = {};  // of its sandbox, its GTK application or its desktop entry
  std::string instance = {};
  std::string windowClass = {};
  std::string title = {};
  std::uint32_t process = 0;

  // Whether no window has the focus.
  [[nodiscard]] bool isNone() const { return *this == FocusedWindow(); }

  friend bool operator==(const FocusedWindow&, const FocusedWindow&) = default;
};

// Reads an answer or a signal of the extension, or a call of the script, which gives the process as
// a text. Absent when it has other types. Main thread only.
[[nodiscard]] std::optional<FocusedWindow> readFocusedWindow(const BusMessage& message);

// Shows `tracker` the window that `message` reports, if it can be read. Main thread only.
void showFocusedWindow(const BusMessage& message, WindowIdentifier& identifier, Moment now,
                       FrontTracker& tracker);

// What the window says about its application, cut to what can be kept. The process is one of the
// machine called `hostName`. Any thread.
[[nodiscard]] WindowDescription describe(const FocusedWindow& window, const std::string& hostName);

}  // namespace tessum
