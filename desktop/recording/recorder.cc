#include "desktop/recording/recorder.h"

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "core/base/limits.h"
#include "core/platform/folders.h"
#include "core/store/history.h"
#include "desktop/recording/recorder_state.h"
#include "desktop/update/update_dialogue.h"

namespace tessum {
namespace {

void say(const std::string& text) {
  std::fprintf(stderr, "Tessum: %s\n", text.c_str());
}

// What goes well is of interest only while a person watches.
void sayToPerson(const std::string& text) {
  if (isatty(STDERR_FILENO) != 0) say(text);
}

// Writing to a display that has gone away is to fail, not to end the program. A handler and not
// SIG_IGN, which programs started from here would keep.
void surviveBrokenPipes() {
  signal(SIGPIPE, [](int) {});
}

std::string preparedFolder(const Host& host) {
  auto folder = host.locations.dataFolder();
  createPrivateFolders(folder);
  return folder;
}

FileLock lockOf(const Locations& locations, const std::string& folder) {
  auto lock = FileLock::take(recorderFile(locations));
  if (!lock) throw std::runtime_error("Another recorder is already writing to " + folder + ".");
  return std::move(*lock);
}

// The monitor drops what it cannot write without a word, so a store that takes nothing, for being
// read-only or damaged, has to be found out before.
std::shared_ptr<Database> writableStore(const std::string& path, const Calendar& calendar) {
  auto database = std::make_shared<Database>(path, calendar);
  History(path, History::Access::write).tryWriting();
  return database;
}

}  // namespace

Recorder::Recorder(const Host& host)
    : locations_(host.locations),
      folder_(preparedFolder(host)),
      lock_(lockOf(locations_, folder_)),
      signals_(loop_, [this] { loop_.quit(); }),
      database_(writableStore(historyPath(host.locations), host.calendar)),
      workspace_(openSystemWorkspace(loop_, [this](const auto& notice) { handle(notice); })),
      monitor_(database_, host.clock, *workspace_, loop_) {}

void Recorder::watchForReleases() {
  updater_.emplace(loop_, locations_);
  announceReleases(updater_->checker(), [](std::string_view line) {
    std::fprintf(stderr, "%.*s", static_cast<int>(line.size()), line.data());
  });
}

void Recorder::serveHTTP(const Host& host) {
  endpoint_.emplace(database_->path(), limits::kDefaultPort, host.clock, host.calendar);
  std::printf("%s\n", endpoint_->url().c_str());
  std::fflush(stdout);
}

int Recorder::run() {
  surviveBrokenPipes();
  monitor_.start();
  sayToPerson("Recording into " + database_->path() + ". Press Control-C to stop.");
  loop_.run();
  monitor_.stop();
  sayToPerson("Recording has stopped.");
  return status_;
}

// A recorder of a desktop that is gone would only keep the next one from starting, so it ends.
void Recorder::handle(const WorkspaceNotice& notice) {
  say(notice.text);
  if (!notice.isFinal) return;
  status_ = kFailure;
  loop_.quit();
}

}  // namespace tessum
