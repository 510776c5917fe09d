// Why our extension of GNOME Shell does not run, as the shell itself knows it.
//
// "gnome-extensions enable" succeeds for an extension that the shell has not read yet, which it
// does only at login; so its success proves nothing, and we have to ask the shell.

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/bus/bus.h"
#include "core/loop/main_loop.h"
#include "core/workspace/desktop_sources.h"

namespace tessum {

// What the shell says of the extension.
struct ShellExtensionReport {
  std::string shellVersion;       // such as "43.9"
  bool allowsExtensions = true;   // of the user at all
  std::optional<int> state = {};  // as GNOME Shell numbers them; absent while it knows of none
  std::string error = {};         // why it could not be started
  bool isInstalled = false;       // its files are where the shell looks at login
};

// From the properties of the shell and what it says of the extension; either may be missing. The
// caller has to look for the files. Any thread.
[[nodiscard]] ShellExtensionReport readShellExtension(const BusDictionary& shell,
                                                      const BusDictionary& extension);

// The name of the extension for that version: one that cannot be read is taken for a new one.
[[nodiscard]] std::string shellExtensionFor(std::string_view shellVersion);

// What keeps the extension from running and what the user can do; absent when nothing does, as
// while it is being started. Any thread.
[[nodiscard]] std::optional<WorkspaceNotice> noticeOf(const ShellExtensionReport& report);

// Asks at once, and again whenever the answer may have changed. It is silent while the screen is
// locked, when the shell runs no extension. Main thread only.
class ShellExtension {
 public:
  // `owner` is the unique name of the shell, and `dataFolders` hold gnome-shell/extensions. `loop`
  // and `session` must outlive this. `onNotice` gets what noticeOf() gives, from the loop; it must
  // not destroy this.
  ShellExtension(MainLoop& loop, Bus& session, std::string owner,
                 std::vector<std::string> dataFolders, WorkspaceNoticeHandler onNotice);
  ~ShellExtension();
  ShellExtension(const ShellExtension&) = delete;
  ShellExtension& operator=(const ShellExtension&) = delete;

 private:
  void ask();
  void askLater();
  void askForVersion();
  void askFor(const std::string& extension);

  MainLoop& loop_;
  Bus& session_;
  const std::string owner_;
  const std::vector<std::string> dataFolders_;
  const WorkspaceNoticeHandler onNotice_;
  BusDictionary shell_;  // its properties
  BusSlot changes_;
  BusSlot lockChanges_;
  BusSlot question_;
  std::optional<MainLoop::TimerToken> timer_;
};

}  // namespace tessum
