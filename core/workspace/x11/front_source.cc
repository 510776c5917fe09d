// Watches the active window on X11.
//
// The server reports that the active window or one of its properties has changed, but not the new
// value, so we query it. When changes come faster than we query, we see the last. A window may be
// gone by the time we query it; it then counts as no window until the window manager publishes the
// next one.

#include "core/workspace/x11/front_source.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/workspace/linux/front_tracker.h"
#include "core/workspace/linux/window_identifier.h"
#include "core/workspace/x11/connection.h"
#include "core/workspace/x11/server_time.h"
#include "core/workspace/x11/window_manager.h"
#include "core/workspace/x11/window_properties.h"

namespace tessum {
namespace {

class X11FrontSource final : public FrontSource {
 public:
  X11FrontSource(SystemMainLoop& loop, const SteadyClock& clock, const std::string& display,
                 DesktopEntries entries, WorkspaceNoticeHandler notice)
      : loop_(loop),
        connection_(display),
        time_(clock),
        manager_(connection_),
        propertyNames_(windowPropertyNames(connection_.atoms())),
        identifier_(std::move(entries)),
        notice_(std::move(notice)),
        tracker_(loop, [this](const auto& front, Moment since) { tell(front, since); }),
        self_(std::make_shared<X11FrontSource*>(this)) {}

  ~X11FrontSource() override {
    if (watch_) loop_.unwatch(*watch_);
  }

  void start(Handler handler) override {
    handler_ = std::move(handler);
    watch_ = loop_.watchReadable(connection_.descriptor(), [this] { readEvents(); });
    lookForWindow(time_.present());
    readReceivedEvents();
  }

  [[nodiscard]] std::string way() const override { return "X11"; }

 private:
  // The time of the latest event of each kind.
  struct Changes {
    std::optional<Moment> window;    // another window may be active
    std::optional<Moment> property;  // the active window may have another title or application
  };

  // Queries once for all events that have arrived, however fast more come: other tasks need the
  // loop, too.
  void readEvents() {
    const Changes changes = takeInEvents();
    if (changes.window) {
      lookForWindow(*changes.window);
    } else if (changes.property) {
      lookAtWindow(*changes.property);
    }
    if (connection_.isLost()) {
      lose();
    } else {
      readReceivedEvents();
    }
  }

  // Events that arrive along with a reply do not make the descriptor readable.
  void readReceivedEvents() {
    if (!connection_.hasReceivedEvent() && !connection_.isLost()) return;
    loop_.post([weak = std::weak_ptr(self_)] {
      if (const auto self = weak.lock()) (*self)->readEvents();
    });
  }

  Changes takeInEvents() {
    Changes changes;
    while (const auto event = connection_.nextEvent()) {
      const bool isStamped = event->kind == X11Event::Kind::propertyChanged;
      const Moment moment = isStamped ? time_.ofEvent(event->stamp) : time_.present();
      const bool endsWindow =
          event->kind == X11Event::Kind::windowDestroyed && event->window == window_;
      if (endsWindow) window_ = 0;  // its number may be reused
      if (manager_.takeIn(*event) || endsWindow) {
        changes.window = moment;
      } else if (event->window == window_ && isAskedFor(event->property)) {
        changes.property = moment;
      }
    }
    static_cast<void>(time_.present());  // later events count from now on
    return changes;
  }

  [[nodiscard]] bool isAskedFor(std::uint32_t property) const {
    return std::find(propertyNames_.begin(), propertyNames_.end(), property) !=
           propertyNames_.end();
  }

  // Some window managers keep publishing the last window after it is destroyed.
  void lookForWindow(Moment since) {
    const std::uint32_t window = manager_.activeWindow();
    if (window != window_) {
      if (window_ != 0) connection_.unwatch(window_);
      if (window != 0) connection_.watchEndAndProperties(window);
      window_ = window;
    }
    lookAtWindow(since);
  }

  void lookAtWindow(Moment since) { tracker_.show(describeWindow(), since); }

  // Absent when no window is active or it is gone.
  std::optional<FrontWindow> describeWindow() {
    if (window_ == 0) return std::nullopt;
    const auto properties = connection_.properties(window_, propertyNames_);
    if (!properties) {
      window_ = 0;
      return std::nullopt;
    }
    auto [description, title] = readWindowProperties(window_, *properties, connection_.atoms());
    FrontWindow window = identifier_.identify(description);
    window.title = std::move(title);
    return window;
  }

  void tell(const std::optional<Front>& front, Moment since) {
    handler_(front, since);
    if (front || manager_.isThere() || connection_.isLost()) return;
    notice_(
        {"No window manager reports the active window; recording continues when one does.", false});
  }

  void lose() {
    if (!watch_) return;
    loop_.unwatch(*watch_);
    watch_.reset();
    tracker_.clear(time_.present());
    notice_({"The X11 display has gone away; nothing more can be recorded.", true});
  }

  SystemMainLoop& loop_;
  X11Connection connection_;
  X11ServerTime time_;
  X11WindowManager manager_;
  const std::vector<std::uint32_t> propertyNames_;
  WindowIdentifier identifier_;
  const WorkspaceNoticeHandler notice_;
  Handler handler_;
  FrontTracker tracker_;
  std::optional<SystemMainLoop::WatchToken> watch_;  // from start() until the display is gone
  std::uint32_t window_ = 0;                         // the active one, which is watched

  // Posted tasks hold a weak pointer to this, so that they do nothing once the source is gone.
  const std::shared_ptr<X11FrontSource*> self_;
};

}  // namespace

std::unique_ptr<FrontSource> openX11FrontSource(SystemMainLoop& loop, const SteadyClock& clock,
                                                const std::string& display, DesktopEntries entries,
                                                WorkspaceNoticeHandler notice) {
  return std::make_unique<X11FrontSource>(loop, clock, display, std::move(entries),
                                          std::move(notice));
}

}  // namespace tessum
