// Follows changes of the settings and the pause while recording.

#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/loop/file_watcher.h"
#include "core/loop/main_loop.h"
#include "desktop/host/host.h"
#include "desktop/settings/pause.h"
#include "desktop/settings/settings.h"

namespace tessum {

// Main thread only.
class SettingsFollower {
 public:
  // A file is read once it has not changed for this many seconds: an editor may remove the old file
  // before it creates the new one, and the rules must stay in force meanwhile.
  static constexpr double kQuietSeconds = 0.25;

  struct Handlers {
    std::function<void(const Settings&)> onSettings;
    std::function<void(const std::optional<Pause>&)> onPause;  // absent when it has ended
    std::function<void(const std::string&)> say;               // receives sentences for a person
  };

  // Calls `handlers` for the current pause before this returns, and from `loop` for changes.
  // Reports invalid settings instead of passing them on. Creates the settings' folder if missing.
  // `host` and `loop` must outlive the object.
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
