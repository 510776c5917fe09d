// Keeps a recording to the settings and the pause as they change.

#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/loop/file_watcher.h"
#include "core/loop/main_loop.h"
#include "desktop/command.h"
#include "desktop/settings/pause.h"
#include "desktop/settings/settings.h"

namespace tessum {

// Main thread only.
class SettingsFollower {
 public:
  // A file is read once it has not changed for so many seconds: an editor may take away the old
  // file before it makes the new one, and no rule may fail to hold meanwhile.
  static constexpr double kQuietSeconds = 0.25;

  struct Handlers {
    std::function<void(const Settings&)> onSettings;
    std::function<void(const std::optional<Pause>&)> onPause;  // absent: it was ended
    std::function<void(const std::string&)> say;               // gets sentences for a person
  };

  // Calls `handlers` for the pause there is, before this returns, and from `loop` for what changes.
  // Settings that are not understood are not passed on but said. Makes the folder of the settings
  // where it is missing. `host` and `loop` must outlive the object.
  SettingsFollower(const Host& host, MainLoop& loop, Handlers handlers);
  ~SettingsFollower();
  SettingsFollower(const SettingsFollower&) = delete;
  SettingsFollower& operator=(const SettingsFollower&) = delete;

 private:
  void watch(std::optional<FileWatcher>& watcher, const std::string& path,
             std::function<void()> onChange);
  void readSettingsLater();
  void readSettings();
  void readPause();

  const Host& host_;
  MainLoop& loop_;
  const Handlers handlers_;
  std::optional<FileWatcher> settings_;
  std::optional<FileWatcher> pause_;
  std::optional<MainLoop::TimerToken> timer_;
  std::string lastComplaint_;
};

}  // namespace tessum
