// Windows in front on X11.
//
// The window manager writes the active window into a property of the root window. The server tells
// of each change but not of the value, which has to be asked for: of changes that follow each other
// faster than that, the last is seen. A window may be gone when it is asked about; it then counts
// as no window, until the change that its end brings about is told.
//
// A window manager that ends leaves its properties behind. Whether one lives is told by a window
// of its own that another property names: it goes with the window manager.

#include "core/workspace/x11/x11_workspace.h"

#include <unistd.h>

#include <array>
#include <fstream>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/text.h"
#include "core/workspace/linux/front_tracker.h"
#include "core/workspace/linux/front_window.h"
#include "core/workspace/x11/compound_text.h"
#include "core/workspace/x11/connection.h"

namespace tessum {
namespace {

std::string hostName() {
  std::array<char, 256> name{};
  gethostname(name.data(), name.size() - 1);
  return name.data();
}

std::optional<std::string> nameOfProcess(std::int32_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  if (!std::getline(file, name) || name.empty()) return std::nullopt;
  return validUtf8(name);
}

// The text of a property; of several texts, which zero bytes end, the first.
std::optional<std::string> textOf(const std::optional<X11Property>& property,
                                  const X11Atoms& atoms) {
  if (!property || property->bitsPerItem != 8) return std::nullopt;
  const std::string_view bytes(property->bytes.c_str());
  if (property->type == atoms.utf8String) return validUtf8(bytes);
  if (property->type == atoms.compoundText) return utf8FromCompoundText(bytes);
  return utf8FromLatin1(bytes);
}

// The second text of WM_CLASS; what follows the zero byte of the first.
std::optional<std::string> secondTextOf(const std::optional<X11Property>& property) {
  if (!property || property->bitsPerItem != 8) return std::nullopt;
  const auto end = property->bytes.find('\0');
  if (end == std::string::npos) return std::nullopt;
  const std::string_view second(property->bytes.c_str() + end + 1);
  if (second.empty()) return std::nullopt;
  return utf8FromLatin1(second);
}

class X11Workspace final : public Workspace {
 public:
  X11Workspace(SystemMainLoop& loop, const std::string& display, DesktopEntries entries,
               WorkspaceNoticeHandler notice)
      : loop_(loop),
        connection_(display),
        entries_(std::move(entries)),
        notice_(std::move(notice)),
        hostName_(hostName()),
        tracker_(loop, [this](const auto& application) { tell(application); }),
        self_(std::make_shared<X11Workspace*>(this)) {
    connection_.watchProperties(connection_.rootWindow());
    look();
    watch_ = loop_.watchReadable(connection_.descriptor(), [this] { readEvents(); });
    post([](X11Workspace& self) {
      self.noticeMissingManager();
      self.readEvents();
    });
  }

  ~X11Workspace() override { loop_.unwatch(watch_); }

  ObserverToken addActivationObserver(ActivationHandler handler) override {
    const ObserverToken token{++lastToken_};
    observers_[token] = std::move(handler);
    return token;
  }

  void removeObserver(ObserverToken token) override { observers_.erase(token); }

  std::optional<RunningApplication> frontmostApplication() override {
    const auto& front = tracker_.current();
    if (!front) return std::nullopt;
    return front->application;
  }

  std::optional<std::string> focusedWindowTitle(const RunningApplication& application) override {
    const auto& front = tracker_.current();
    if (!front || front->application != application) return std::nullopt;
    const auto& atoms = connection_.atoms();
    const auto found = connection_.properties(front->window, {atoms.netName, atoms.name});
    readReceivedEvents();
    if (!found) return std::nullopt;
    const auto title = textOf((*found)[0], atoms);
    return title ? title : textOf((*found)[1], atoms);
  }

 private:
  void post(void (*task)(X11Workspace&)) {
    loop_.post([weak = std::weak_ptr(self_), task] {
      if (const auto self = weak.lock()) task(**self);
    });
  }

  // What came along with an answer, of which the descriptor does not tell.
  void readReceivedEvents() {
    if (!connection_.hasReceivedEvent() && !connection_.isLost()) return;
    post([](X11Workspace& self) { self.readEvents(); });
  }

  void readEvents() {
    while (takeInEvents()) look();
    if (connection_.isLost()) lose();
  }

  // All events that are here; whether any may mean another active window.
  bool takeInEvents() {
    bool mayMeanAnother = false;
    while (const auto event = connection_.nextEvent()) {
      if (takeIn(*event)) mayMeanAnother = true;
    }
    return mayMeanAnother;
  }

  // Whether it may mean another active window.
  bool takeIn(const X11Event& event) {
    switch (event.kind) {
      case X11Event::Kind::propertyChanged:
        if (event.property == connection_.atoms().windowManagerCheck) managerWindow_ = 0;
        return event.property == connection_.atoms().activeWindow ||
               event.property == connection_.atoms().windowManagerCheck;
      case X11Event::Kind::windowDestroyed:
        if (event.window == managerWindow_) managerLives_ = false;
        return true;
      case X11Event::Kind::other:
        return false;
    }
    return false;
  }

  void look() {
    const auto& atoms = connection_.atoms();
    const auto found = connection_.properties(connection_.rootWindow(),
                                              {atoms.activeWindow, atoms.windowManagerCheck});
    if (!found) return;
    const auto& [active, check] = std::tie((*found)[0], (*found)[1]);
    checkManager(check ? check->number().value_or(0) : 0, active.has_value());
    const std::uint32_t window = managerLives_ && active ? active->number().value_or(0) : 0;
    watchOnly(window);
    tracker_.show(window == 0 ? std::nullopt : describe(window));
    readReceivedEvents();
  }

  // Some window managers go on publishing the last window after its end.
  void watchOnly(std::uint32_t window) {
    if (window == watchedWindow_) return;
    if (watchedWindow_ != 0) connection_.unwatch(watchedWindow_);
    if (window != 0) connection_.watchDestruction(window);
    watchedWindow_ = window;
  }

  // Some window managers have no window for this check; they live as long as they publish.
  void checkManager(std::uint32_t window, bool publishesActiveWindow) {
    if (window == 0) {
      managerWindow_ = 0;
      managerLives_ = publishesActiveWindow;
      return;
    }
    if (window == managerWindow_) return;
    managerWindow_ = window;
    connection_.watchDestruction(window);
    const auto found = connection_.properties(window, {connection_.atoms().windowManagerCheck});
    managerLives_ = found && (*found)[0] && (*found)[0]->number() == window;
  }

  // Absent when the window is gone.
  std::optional<FrontWindow> describe(std::uint32_t window) {
    const auto& atoms = connection_.atoms();
    const auto found =
        connection_.properties(window, {atoms.applicationId, atoms.desktopFile, atoms.windowClass,
                                        atoms.process, atoms.clientMachine});
    if (!found) return std::nullopt;
    const auto text = [&](std::size_t i) {
      auto value = textOf((*found)[i], atoms);
      if (value && value->empty()) value.reset();
      return value;
    };
    WindowDescription description;
    description.window = window;
    description.applicationId = text(0);
    description.desktopFile = text(1);
    description.instance = text(2);
    description.windowClass = secondTextOf((*found)[2]);
    if (const auto& process = (*found)[3]; process && process->number()) {
      description.process = static_cast<std::int32_t>(*process->number());
    }
    description.clientMachine = text(4);
    entries_.refresh();
    return identify(description, entries_, hostName_, nameOfProcess);
  }

  void tell(const std::optional<RunningApplication>& application) {
    const auto observers = observers_;  // a handler may add and remove some
    for (const auto& [token, handler] : observers) {
      if (observers_.contains(token)) handler(application);
    }
    if (!application) noticeMissingManager();
  }

  void noticeMissingManager() {
    if (managerLives_ || connection_.isLost()) return;
    notice_(
        {"No window manager says which window is active; recording goes on when one does.", false});
  }

  void lose() {
    loop_.unwatch(watch_);
    tracker_.clear();
    if (std::exchange(hasToldLoss_, true)) return;
    notice_({"The X11 display has gone away; nothing more can be recorded.", true});
  }

  SystemMainLoop& loop_;
  X11Connection connection_;
  DesktopEntries entries_;
  const WorkspaceNoticeHandler notice_;
  const std::string hostName_;
  FrontTracker tracker_;
  SystemMainLoop::WatchToken watch_{};
  std::uint32_t managerWindow_ = 0;  // the one checked last
  bool managerLives_ = false;
  std::uint32_t watchedWindow_ = 0;  // the active one
  bool hasToldLoss_ = false;
  std::map<ObserverToken, ActivationHandler> observers_;
  std::uint64_t lastToken_ = 0;

  // What is posted holds this weakly: once it is gone, so is the workspace.
  const std::shared_ptr<X11Workspace*> self_;
};

}  // namespace

std::unique_ptr<Workspace> openX11Workspace(SystemMainLoop& loop, const std::string& display,
                                            DesktopEntries entries, WorkspaceNoticeHandler notice) {
  return std::make_unique<X11Workspace>(loop, display, std::move(entries), std::move(notice));
}

}  // namespace tessum
