#include "core/loop/file_watcher.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <utility>

#include "core/platform/descriptor.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

// A write counts once the writer closes the file.
constexpr std::uint32_t kEvents = IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM |
                                  IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

Descriptor makeInotify() {
  Descriptor inotify(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
  if (inotify.number() < 0) {
    throw std::system_error(errno, std::generic_category(), "Cannot watch files");
  }
  return inotify;
}

}  // namespace

struct FileWatcher::State {
  State(MainLoop& mainLoop, std::string watched, std::function<void()> handler)
      : loop(mainLoop),
        path(std::move(watched)),
        onChange(std::move(handler)),
        inotify(makeInotify()) {
    if (!watchFolder()) {
      throw std::system_error(errno, std::generic_category(),
                              "Cannot watch " + path.parent_path().string());
    }
    token = loop.watchReadable(inotify.number(), [this] { readEvents(); });
  }

  ~State() { loop.unwatch(token); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  // Watches the folder of `file` for its name. False, with errno set, when that fails.
  bool watch(const fs::path& file) {
    const int folder = inotify_add_watch(inotify.number(), file.parent_path().c_str(), kEvents);
    if (folder < 0) return false;
    names[folder].insert(file.filename());
    return true;
  }

  // Watches the file's folder, which may be another one by now. While it is missing, watches those
  // above, of which one will show that it is back: from the root down, so that a folder which is
  // made meanwhile is seen. False, with errno set, when the file's own folder cannot be watched.
  bool watchFolder() {
    for (const auto& folder : names) inotify_rm_watch(inotify.number(), folder.first);
    names.clear();
    watchTarget();
    bool isWatched = watch(path);
    if (isWatched) return true;
    fs::path file;
    for (const fs::path& name : path) {
      file /= name;
      isWatched = watch(file);
    }
    return isWatched;
  }

  // A folder that cannot be watched does not exist or belongs to another user.
  void watchTarget() {
    std::error_code error;
    const fs::path target = fs::canonical(path, error);
    if (!error && target != path) static_cast<void>(watch(target));
  }

  void readEvents() {
    bool hasChanged = false;
    alignas(inotify_event) char buffer[4096];
    while (true) {
      const auto size = retried([&] { return read(inotify.number(), buffer, sizeof buffer); });
      if (size <= 0) break;
      for (const char* at = buffer; at < buffer + size;) {
        inotify_event event{};
        std::memcpy(&event, at, sizeof event);
        hasChanged = hasChanged || isOfFile(event, at + sizeof event);
        at += sizeof event + event.len;
      }
    }
    if (!hasChanged) return;
    static_cast<void>(watchFolder());
    const auto handler = onChange;  // it may destroy this watcher
    handler();
  }

  // An overflow of the event queue and the end of a folder count as a change of the file.
  [[nodiscard]] bool isOfFile(const inotify_event& event, const char* name) const {
    if ((event.mask & (IN_Q_OVERFLOW | IN_DELETE_SELF | IN_MOVE_SELF)) != 0) return true;
    const auto found = names.find(event.wd);
    return found != names.end() && event.len > 0 && found->second.count(name) > 0;
  }

  MainLoop& loop;
  const fs::path path;
  const std::function<void()> onChange;
  const Descriptor inotify;
  std::map<int, std::set<std::string>> names;  // by watched folder
  MainLoop::WatchToken token{};
};

FileWatcher::FileWatcher(MainLoop& loop, const std::string& path, std::function<void()> onChange)
    : state_(std::make_unique<State>(loop, path, std::move(onChange))) {}

FileWatcher::~FileWatcher() = default;

}  // namespace tessum
