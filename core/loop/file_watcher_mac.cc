// A folder's vnode reports files that are added, removed and renamed; a file's own vnode reports
// writes. So we watch both, and open all of them again after each event.

#include "core/loop/file_watcher.h"

#include <fcntl.h>
#include <sys/event.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "core/platform/descriptor.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

Descriptor makeQueue() {
  Descriptor queue(kqueue());
  if (queue.number() < 0) {
    throw std::system_error(errno, std::generic_category(), "Cannot watch files");
  }
  fcntl(queue.number(), F_SETFD, FD_CLOEXEC);
  return queue;
}

}  // namespace

struct FileWatcher::State {
  State(MainLoop& mainLoop, std::string watched, std::function<void()> handler)
      : loop(mainLoop), path(std::move(watched)), onChange(std::move(handler)), queue(makeQueue()) {
    if (!watchAll()) {
      throw std::system_error(errno, std::generic_category(),
                              "Cannot watch " + path.parent_path().string());
    }
    token = loop.watchReadable(queue.number(), [this] { readEvents(); });
  }

  ~State() { loop.unwatch(token); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  // Watches the file or folder at `watched` until its descriptor is closed. False, with errno set,
  // when that fails.
  bool watch(const fs::path& watched) {
    Descriptor descriptor(open(watched.c_str(), O_EVTONLY | O_CLOEXEC));
    if (descriptor.number() < 0) return false;
    constexpr std::uint32_t kEvents = NOTE_WRITE | NOTE_EXTEND | NOTE_DELETE | NOTE_RENAME;
    struct kevent event;
    EV_SET(&event, static_cast<std::uintptr_t>(descriptor.number()), EVFILT_VNODE,
           EV_ADD | EV_CLEAR, kEvents, 0, nullptr);
    if (kevent(queue.number(), &event, 1, nullptr, 0, nullptr) < 0) return false;
    opened.push_back(std::move(descriptor));
    return true;
  }

  // Watches the file's folder and the file. While the folder is missing, watches those above, of
  // which one will show that it is back: from the root down, so that a folder which is made
  // meanwhile is seen. False, with errno set, when the file's own folder cannot be watched.
  bool watchAll() {
    opened.clear();
    bool isWatched = watch(path.parent_path());
    if (!isWatched) {
      fs::path folder;
      for (const fs::path& name : path.parent_path()) {
        folder /= name;
        isWatched = watch(folder);
      }
    }
    if (isWatched) watchFile();
    return isWatched;
  }

  // The file itself and, if it is a link, its target's folder. What cannot be watched does not
  // exist or belongs to another user.
  void watchFile() {
    std::error_code error;
    const fs::path target = fs::canonical(path, error);
    if (error) return;
    static_cast<void>(watch(target));
    if (target != path) static_cast<void>(watch(target.parent_path()));
  }

  void readEvents() {
    struct kevent event;
    const timespec atOnce{};
    bool hasChanged = false;
    while (kevent(queue.number(), nullptr, 0, &event, 1, &atOnce) > 0) hasChanged = true;
    if (!hasChanged) return;
    static_cast<void>(watchAll());
    const auto handler = onChange;  // it may destroy this watcher
    handler();
  }

  MainLoop& loop;
  const fs::path path;
  const std::function<void()> onChange;
  const Descriptor queue;
  std::vector<Descriptor> opened;
  MainLoop::WatchToken token{};
};

FileWatcher::FileWatcher(MainLoop& loop, const std::string& path, std::function<void()> onChange)
    : state_(std::make_unique<State>(loop, path, std::move(onChange))) {}

FileWatcher::~FileWatcher() = default;

}  // namespace tessum
