// The recording program: it records what is in front into the history until it is told to end.

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/loop/serial_queue.h"
#include "core/loop/system_main_loop.h"
#include "core/loop/termination_signals.h"
#include "core/platform/file_lock.h"
#include "core/presence/presence_source.h"
#include "core/workspace/desktop_sources.h"
#include "desktop/endpoint/endpoint_process.h"
#include "desktop/endpoint/http_endpoint.h"
#include "desktop/host/host.h"
#include "desktop/recording/recorder_state.h"
#include "desktop/recording/recording.h"
#include "desktop/recording/recording_options.h"
#include "desktop/recording/session_journal.h"
#include "desktop/recording/settings_follower.h"
#include "desktop/update/updater.h"

namespace tessum {

// Owns the parts of the program, in the order of their dependencies. Main thread only.
class Recorder {
 public:
  // Reads the settings, which `options` override. Creates the data folder and the database if
  // missing, and ends the sessions that an earlier recorder could not end. Throws
  // std::system_error, std::runtime_error when another recorder uses the data folder,
  // SettingsError, WorkspaceUnavailable and DatabaseError.
  Recorder(const Host& host, const RecordingOptions& options);

  // Checks for a newer version now and every six hours while recording, and prints one line when
  // there is one. Does nothing in a build without a release service.
  void watchForReleases();

  // Also serves assistants over HTTP, from a separate process, and prints the URL. Throws what
  // EndpointProcess throws.
  void serveHTTP(OpenTo openTo);

  // Records until SIGINT, SIGTERM or SIGHUP, until the login session ends, or until the desktop
  // goes away, and closes the open session. Returns the exit status.
  [[nodiscard]] int run();

 private:
  void handle(const WorkspaceNotice& notice);
  void show(const std::optional<Front>& front, Moment since);
  void watchInput();
  void watchPresence();
  void followSettings();
  void obey(const Settings& settings);
  void obey(const std::optional<Pause>& pause);
  void tick();
  void publishState();
  void touchLock();

  const Host& host_;
  const RecordingOptions options_;
  RecordingSettings settings_;
  const std::string folder_;
  const RecorderState before_;            // the last recorder's state
  const std::shared_ptr<FileLock> lock_;  // shared with the queue, which writes to its file
  SystemMainLoop loop_;
  const SystemSteadyClock steady_{};
  TerminationSignals signals_;
  const std::string database_;
  ThreadQueue queue_;  // for all writes to the disk
  const std::shared_ptr<SessionJournal> journal_;
  std::vector<AwakeReason> awake_;
  Moment lastTouch_;
  RecorderState state_;
  Recording recording_;
  DesktopSources desktop_;
  std::unique_ptr<PresenceSource> presence_;
  std::optional<SettingsFollower> follower_;
  bool saysPause_ = false;         // whether the last message was of a pause
  PresenceHandlers::Delay delay_;  // delays the end of the login session until all is written
  std::optional<EndpointProcess> endpoint_;
  std::optional<Updater> updater_;
  int status_ = kSuccess;
};

}  // namespace tessum
