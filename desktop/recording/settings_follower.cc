#include "desktop/recording/settings_follower.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "core/platform/private_files.h"
#include "desktop/settings/settings_file.h"
#include "desktop/settings/settings_reader.h"

namespace tessum {

SettingsFollower::SettingsFollower(const Host& host, MainLoop& loop, Handlers handlers)
    : host_(host), loop_(loop), handlers_(std::move(handlers)) {
  watch(settings_, settingsPath(host.locations), [this] { readSettingsLater(); });
  watch(pause_, pausePath(host.locations), [this] { readPause(); });
  readSettingsLater();  // they may have just changed
  readPause();
}

SettingsFollower::~SettingsFollower() {
  if (timer_) loop_.invalidateTimer(*timer_);
}

void SettingsFollower::watch(std::optional<FileWatcher>& watcher, const std::string& path,
                             std::function<void()> onChange) {
  try {
    createPrivateFolders(std::filesystem::path(path).parent_path());
    watcher.emplace(loop_, path, std::move(onChange));
  } catch (const std::system_error& error) {
    handlers_.say(std::string(error.what()) + ". Start the recorder again when you change " + path +
                  ".");
  }
}

void SettingsFollower::readSettingsLater() {
  if (timer_) loop_.invalidateTimer(*timer_);
  timer_ = loop_.runAfter(kQuietSeconds, [this] {
    timer_.reset();
    readSettings();
  });
}

void SettingsFollower::readSettings() {
  try {
    handlers_.onSettings(loadSettings(host_.locations, host_.files));
    lastComplaint_.clear();
  } catch (const SettingsError& error) {
    if (lastComplaint_ == error.what()) return;
    lastComplaint_ = error.what();
    handlers_.say(lastComplaint_);
    handlers_.say("The settings from before stay in force.");
  }
}

void SettingsFollower::readPause() {
  try {
    handlers_.onPause(pauseAt(host_.clock.now(), host_.locations, host_.files));
  } catch (const std::system_error& error) {
    handlers_.say(error.what());
  }
}

}  // namespace tessum
