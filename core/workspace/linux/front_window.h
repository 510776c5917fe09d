// Finds the application that a window of a Linux desktop belongs to.

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "core/workspace/linux/desktop_entries.h"
#include "core/workspace/workspace.h"

namespace tessum {

// What a window says about its application. Texts are UTF-8; a member is absent when the window
// does not set it.
struct WindowDescription {
  std::uint32_t window = 0;
  std::optional<std::string> applicationId = {};  // _GTK_APPLICATION_ID
  std::optional<std::string> desktopFile = {};    // _KDE_NET_WM_DESKTOP_FILE
  std::optional<std::string> instance = {};       // first part of WM_CLASS
  std::optional<std::string> windowClass = {};    // second part of WM_CLASS
  std::optional<std::int32_t> process = {};       // _NET_WM_PID
  std::optional<std::string> clientMachine = {};  // WM_CLIENT_MACHINE: where that process runs

  friend bool operator==(const WindowDescription&, const WindowDescription&) = default;
};

// Identifies an application: two windows with equal keys belong to one application.
struct ApplicationKey {
  std::string name;  // the desktop entry's id, else the window's own id or class
  std::optional<std::int32_t> process;
  std::uint32_t window = 0;  // 0 unless nothing else identifies the window

  friend bool operator==(const ApplicationKey&, const ApplicationKey&) = default;
};

// The active window, as the application it belongs to and its title.
struct FrontWindow {
  ApplicationKey key;
  RunningApplication application;
  std::optional<std::string> title = {};  // never empty

  // Whether the window does not identify its application.
  [[nodiscard]] bool isAnonymous() const { return key.name.empty() && !key.process; }
};

// Returns the name of a process of this machine; absent when there is no such process.
using ProcessName = std::function<std::optional<std::string>(std::int32_t)>;

// The application of the window with that description, on the machine called `hostName`. The title
// stays absent.
[[nodiscard]] FrontWindow identify(const WindowDescription& description,
                                   const DesktopEntries& entries, const std::string& hostName,
                                   const ProcessName& processName);

}  // namespace tessum
