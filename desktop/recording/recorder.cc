#include "desktop/recording/recorder.h"

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "core/platform/private_files.h"
#include "core/presence/system_presence.h"
#include "core/store/database.h"
#include "core/store/history.h"
#include "core/store/lock_patience.h"
#include "core/update/urls.h"
#include "desktop/host/own_program.h"
#include "desktop/periods/wall_clock.h"
#include "desktop/recording/left_open.h"
#include "desktop/settings/settings_file.h"
#include "desktop/update/update_dialogue.h"

namespace tessum {
namespace {

// How often the lock's file is touched, to record that the recorder is running: after a crash, the
// open session ends at that time. With the tick's interval it is never a minute old.
constexpr double kTouchSeconds = 30;

void say(const std::string& text) {
  std::fprintf(stderr, "Tessum: %s\n", text.c_str());
}

// Progress is of interest only on a terminal.
void sayToPerson(const std::string& text) {
  if (isatty(STDERR_FILENO) != 0) say(text);
}

// Writing to a display that has gone away must fail, not end the program. We install a handler
// instead of SIG_IGN, which child processes would inherit.
void surviveBrokenPipes() {
  signal(SIGPIPE, [](int) {});
}

std::string preparedFolder(const Host& host) {
  auto folder = host.locations.dataFolder();
  createPrivateFolders(folder);
  for (const std::string& path : filesOpenToOthers(folder)) closeToOthers(path);
  return folder;
}

std::shared_ptr<FileLock> lockOf(const Host& host) {
  auto lock = FileLock::take(recorderFile(host.locations));
  if (!lock) {
    throw std::runtime_error("Another recorder is already writing to " +
                             host.locations.dataFolder() + ".");
  }
  return std::make_shared<FileLock>(std::move(*lock));
}

void sayWhatWasLeftOpen(const std::vector<Activity>& ended) {
  if (ended.empty()) return;
  const Date end = *ended.back().endTime;
  say((ended.size() == 1 ? "A session was" : std::to_string(ended.size()) + " sessions were") +
      " left open when the recorder was cut off; " +
      (ended.size() == 1 ? "it ends" : "the last one ends") + " at " + dateText(end) + " " +
      clockText(end) + " now.");
}

// The path of a database that exists, accepts sessions, and has none open. A read-only or damaged
// database must be detected before recording begins.
std::string preparedDatabase(const Host& host, const RecorderState& before) {
  std::string path = historyPath(host.locations);
  outlastingLocks(kLockPatienceSeconds, [&] {
    { const Database made(path, host.calendar); }
    History history(path, History::Access::write);
    history.tryWriting();
    sayWhatWasLeftOpen(endLeftOpen(history, before));
  });
  return path;
}

// What keeps the user from being away, as far as the settings allow it to be shown: a reason may be
// the name of a film.
std::vector<std::string> sayable(const std::vector<AwakeReason>& reasons,
                                 const std::vector<HideRule>& rules, Date now) {
  std::vector<std::string> texts;
  for (const auto& [who, why] : reasons) {
    const Window window{.app = who, .identifier = std::nullopt, .title = why};
    const Kept kept = judge(rules, window, wallTime(now)).kept;
    const bool saysWhy = kept == Kept::all && !why.empty();
    texts.push_back(kept == Kept::nothing ? "another program" : who + (saysWhy ? ": " + why : ""));
  }
  return texts;
}

}  // namespace

Recorder::Recorder(const Host& host, const RecordingOptions& options)
    : host_(host),
      options_(options),
      settings_(recordingSettings(loadSettings(host.locations, host.files), options)),
      folder_(preparedFolder(host)),
      before_(recorderState(host.locations)),
      lock_(lockOf(host)),
      signals_(loop_, [this] { loop_.quit(); }),
      database_(preparedDatabase(host, before_)),
      queue_("com.tessum.history"),
      journal_(std::make_shared<SessionJournal>(database_, loop_, queue_, say)),
      recording_(journal_, host.clock, steady_, loop_, settings_, [this] { publishState(); }),
      desktop_(openDesktopSources(loop_, steady_, [this](const auto& notice) { handle(notice); })),
      presence_(openSystemPresence(loop_, steady_)) {
  state_.since = host.clock.now();
  state_.way = desktop_.front->way();
  publishState();
}

void Recorder::watchForReleases() {
  if (configuredBaseUrls().empty()) return;
  updater_.emplace(loop_, host_.locations);
  announceReleases(updater_->checker(), systemDelivery(), [](std::string_view line) {
    std::fprintf(stderr, "%.*s", static_cast<int>(line.size()), line.data());
  });
}

void Recorder::serveHTTP(OpenTo openTo) {
  std::vector<std::string> command{ownProgram(host_.locations), "serve", "--until-input-ends"};
  if (openTo == OpenTo::everyone) command.emplace_back("--open");
  endpoint_.emplace(std::move(command), loop_, steady_, say);
  std::printf("%s\n", endpoint_->url().c_str());
  std::fflush(stdout);
}

int Recorder::run() {
  surviveBrokenPipes();
  followSettings();
  watchInput();
  watchPresence();
  desktop_.front->start(
      [this](const std::optional<Front>& front, Moment since) { show(front, since); });
  loop_.startTimer(Recording::kTickSeconds, [this] { tick(); });
  sayToPerson("Recording into " + database_ + ". Press Control-C to stop.");
  loop_.run();
  recording_.stop();
  if (!journal_->finish(kLockPatienceSeconds)) status_ = kFailure;
  state_.hasEnded = true;
  publishState();
  sayToPerson("Recording has stopped.");
  return status_;
}

void Recorder::watchInput() {
  if (!desktop_.idle || !settings_.awayAfter) return;
  desktop_.idle->watch(
      *settings_.awayAfter,
      {.onIdle = [this](Moment lastInput) { recording_.away().noteIdle(lastInput); },
       .onActive = [this](Moment input) { recording_.away().noteInput(input); }});
}

void Recorder::followSettings() {
  follower_.emplace(host_, loop_,
                    SettingsFollower::Handlers{
                        .onSettings = [this](const Settings& settings) { obey(settings); },
                        .onPause = [this](const std::optional<Pause>& pause) { obey(pause); },
                        .say = say});
}

void Recorder::obey(const Settings& settings) {
  const auto awayAfter = settings_.awayAfter;
  settings_ = recordingSettings(settings, options_);
  recording_.obey(settings_);
  if (settings_.awayAfter != awayAfter) watchInput();
  publishState();
}

void Recorder::obey(const std::optional<Pause>& pause) {
  recording_.pause(pause);
  publishState();
  if (pause) say("Recording is paused " + pauseText(*pause, host_.clock.now()) + ".");
  if (!pause && saysPause_) say("Recording continues.");
  saysPause_ = pause.has_value();
}

void Recorder::watchPresence() {
  presence_->watch(
      {.onLock = [this](bool isLocked, Moment when) { recording_.away().noteLock(isLocked, when); },
       .onSleep =
           [this](Moment when, PresenceHandlers::Delay delay) {
             recording_.noteSleep(when);
             journal_->holdUntilWritten(std::move(delay));
           },
       .onSessionEnd =
           [this](Moment, PresenceHandlers::Delay delay) {
             delay_ = std::move(delay);
             loop_.quit();
           },
       .onWake = [this](Moment when) { recording_.noteWakeUp(when); },
       .onKeptAwake =
           [this](const std::vector<AwakeReason>& reasons, Moment when) {
             awake_ = reasons;
             recording_.away().noteKeptAwake(!reasons.empty(), when);
             publishState();
           }});
}

void Recorder::tick() {
  recording_.tick();
  if (secondsBetween(lastTouch_, steady_.now()) >= kTouchSeconds) touchLock();
}

// Once its desktop is gone, a recorder would only prevent the next one from starting, so it ends.
void Recorder::handle(const WorkspaceNotice& notice) {
  state_.notice = notice.text + (notice.remedy.empty() ? "" : " " + notice.remedy);
  say(state_.notice);
  publishState();
  if (!notice.isFinal) return;
  status_ = kFailure;
  loop_.quit();
}

// Once the desktop shows something again, its notice no longer applies.
void Recorder::show(const std::optional<Front>& front, Moment since) {
  recording_.show(front, since);
  if (!front || state_.notice.empty()) return;
  state_.notice.clear();
  publishState();
}

void Recorder::publishState() {
  state_.awaySince = recording_.awaySince();
  state_.awake.clear();
  if (!recording_.isPaused()) state_.awake = sayable(awake_, settings_.hide, host_.clock.now());
  lastTouch_ = steady_.now();
  queue_.post([lock = lock_, text = stateText(state_)] { lock->write(text); });
}

void Recorder::touchLock() {
  lastTouch_ = steady_.now();
  queue_.post([lock = lock_] { lock->touch(); });
}

}  // namespace tessum
