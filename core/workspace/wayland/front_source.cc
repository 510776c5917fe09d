// Windows in front on Wayland. The compositor reports every change, but not its time: each counts
// from the moment of the report.

#include "core/workspace/wayland/front_source.h"

#include <utility>

#include "core/workspace/linux/front_tracker.h"
#include "core/workspace/linux/window_identifier.h"
#include "core/workspace/title.h"
#include "core/workspace/wayland/toplevels.h"
#include "core/workspace/wayland/windows.h"

namespace tessum {
namespace {

// A text that is absent when it is empty.
std::optional<std::string> given(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional(text);
}

class WaylandFrontSource final : public FrontSource {
 public:
  WaylandFrontSource(SystemMainLoop& loop, const SteadyClock& clock,
                     std::shared_ptr<WaylandConnection> connection, DesktopEntries entries,
                     WorkspaceNoticeHandler notice)
      : clock_(clock),
        connection_(std::move(connection)),
        windows_(openWindows(*connection_, toplevels_)),
        identifier_(std::move(entries)),
        notice_(std::move(notice)),
        tracker_(loop, [this](const auto& front, Moment since) { handler_(front, since); }) {}

  ~WaylandFrontSource() override { connection_->removeListener(listener_); }

  // Whether the compositor reports its windows. Otherwise this object is of no use.
  [[nodiscard]] bool isOffered() const { return windows_ != nullptr; }

  void start(Handler handler) override {
    handler_ = std::move(handler);
    listener_ =
        connection_->addListener({.onEvents = [this] { showChanges(); },
                                  .onLost = [this](const WaylandLoss& loss) { lose(loss); }});
    for (int i = 0; i < windows_->roundTrips(); ++i) {
      const auto loss = connection_->roundTrip();
      if (!loss) continue;
      tracker_.show(std::nullopt, loss->since);
      return lose(*loss);
    }
    // Only the last of them has been in front since the program asked.
    const auto changes = toplevels_.takeChanges();
    show(changes.empty() ? std::nullopt : changes.back());
  }

  [[nodiscard]] std::string way() const override { return windows_->way(); }

 private:
  void showChanges() {
    for (const auto& toplevel : toplevels_.takeChanges()) show(toplevel);
    if (!windows_->hasEnded()) return;
    lose({"The Wayland compositor no longer reports its windows", clock_.now()});
  }

  void show(const std::optional<WaylandToplevel>& toplevel) {
    std::optional<FrontWindow> window;
    if (toplevel) window = windowOf(*toplevel);
    tracker_.show(window, clock_.now());
  }

  // An application's id is the name of its desktop entry or, of programs that know only X11, the
  // class of their windows. Compositors report the process of programs on this machine only.
  [[nodiscard]] FrontWindow windowOf(const WaylandToplevel& toplevel) {
    const auto appId = given(toplevel.appId);
    FrontWindow window = identifier_.identify({.window = toplevel.id,
                                               .applicationId = appId,
                                               .windowClass = appId,
                                               .process = toplevel.process,
                                               .clientMachine = identifier_.hostName()});
    window.title = titleFrom(toplevel.title);
    return window;
  }

  void lose(const WaylandLoss& loss) {
    connection_->removeListener(listener_);
    tracker_.clear(loss.since);
    notice_({loss.reason + "; nothing more can be recorded.", true});
  }

  const SteadyClock& clock_;
  const std::shared_ptr<WaylandConnection> connection_;
  WaylandToplevels toplevels_;
  const std::unique_ptr<WaylandWindows> windows_;
  WindowIdentifier identifier_;
  const WorkspaceNoticeHandler notice_;
  Handler handler_;
  FrontTracker tracker_;
  WaylandConnection::ListenerToken listener_{};
};

}  // namespace

std::unique_ptr<FrontSource> openWaylandFrontSource(SystemMainLoop& loop, const SteadyClock& clock,
                                                    std::shared_ptr<WaylandConnection> connection,
                                                    DesktopEntries entries,
                                                    WorkspaceNoticeHandler notice) {
  auto source = std::make_unique<WaylandFrontSource>(loop, clock, std::move(connection),
                                                     std::move(entries), std::move(notice));
  return source->isOffered() ? std::move(source) : nullptr;
}

}  // namespace tessum
