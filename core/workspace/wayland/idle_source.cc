#include "core/workspace/wayland/idle_source.h"

#include <ext-idle-notify-v1.h>
#include <idle.h>
#include <wayland-client.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <utility>
#include <vector>

namespace tessum {
namespace {

// Compositors use signed numbers.
std::uint32_t millisecondsOf(double seconds) {
  return static_cast<std::uint32_t>(
      std::clamp(std::round(seconds * kMillisecondsPerSecond), 1.0, double{INT_MAX}));
}

// ext_idle_notifier_v1: the one that all desktops have agreed on.
struct CommonIdle {
  using Notifier = ext_idle_notifier_v1;
  using Timer = ext_idle_notification_v1;
  using Listener = ext_idle_notification_v1_listener;
  static constexpr const wl_interface& kInterface = ext_idle_notifier_v1_interface;

  static Timer* makeTimer(Notifier* notifier, wl_seat* seat, std::uint32_t milliseconds) {
    return ext_idle_notifier_v1_get_idle_notification(notifier, milliseconds, seat);
  }
  static void listen(Timer* timer, const Listener* listener, void* self) {
    ext_idle_notification_v1_add_listener(timer, listener, self);
  }
  static void destroy(Timer* timer) { ext_idle_notification_v1_destroy(timer); }
};

// org_kde_kwin_idle: the older one. sway up to 1.7 does not report the next input if a program has
// begun to inhibit idleness in the meantime.
struct KWinIdle {
  using Notifier = org_kde_kwin_idle;
  using Timer = org_kde_kwin_idle_timeout;
  using Listener = org_kde_kwin_idle_timeout_listener;
  static constexpr const wl_interface& kInterface = org_kde_kwin_idle_interface;

  static Timer* makeTimer(Notifier* notifier, wl_seat* seat, std::uint32_t milliseconds) {
    return org_kde_kwin_idle_get_idle_timeout(notifier, seat, milliseconds);
  }
  static void listen(Timer* timer, const Listener* listener, void* self) {
    org_kde_kwin_idle_timeout_add_listener(timer, listener, self);
  }
  static void destroy(Timer* timer) { org_kde_kwin_idle_timeout_release(timer); }
};

template <typename Protocol>
class WaylandIdleSource final : public IdleSource {
 public:
  WaylandIdleSource(const SteadyClock& clock, std::shared_ptr<WaylandConnection> connection)
      : clock_(clock),
        connection_(std::move(connection)),
        notifier_(connection_->bind<typename Protocol::Notifier>(Protocol::kInterface, 1)),
        seat_(connection_->bind<wl_seat>(wl_seat_interface, 1)),
        listener_(connection_->addListener({.onEvents = [this] { tell(); }})) {}

  ~WaylandIdleSource() override { connection_->removeListener(listener_); }

  void watch(double seconds, Handlers handlers) override {
    seconds_ = seconds;
    handlers_ = std::move(handlers);
    news_.clear();
    timer_.reset(Protocol::makeTimer(notifier_.get(), seat_.get(), millisecondsOf(seconds)));
    Protocol::listen(timer_.get(), &kListener, this);
    connection_->flush();
  }

 private:
  struct News {
    bool isIdle = false;
    Moment when;
  };
  struct Destroy {
    void operator()(typename Protocol::Timer* timer) const { Protocol::destroy(timer); }
  };

  static void onIdle(void* self, typename Protocol::Timer*) noexcept {
    static_cast<WaylandIdleSource*>(self)->note(true);
  }
  static void onResumed(void* self, typename Protocol::Timer*) noexcept {
    static_cast<WaylandIdleSource*>(self)->note(false);
  }
  static constexpr typename Protocol::Listener kListener{onIdle, onResumed};

  void note(bool isIdle) { news_.push_back({isIdle, clock_.now()}); }

  // A handler may call watch() again, after which earlier events are not reported.
  void tell() {
    while (!news_.empty()) {
      const auto [isIdle, when] = news_.front();
      news_.erase(news_.begin());
      const auto handler = isIdle ? handlers_.onIdle : handlers_.onActive;
      handler(isIdle ? movedBy(when, -seconds_) : when);
    }
  }

  const SteadyClock& clock_;
  const std::shared_ptr<WaylandConnection> connection_;
  const WaylandOwned<typename Protocol::Notifier> notifier_;
  const WaylandOwned<wl_seat> seat_;
  const WaylandConnection::ListenerToken listener_;
  double seconds_ = 0;
  Handlers handlers_;
  std::unique_ptr<typename Protocol::Timer, Destroy> timer_;
  std::vector<News> news_;
};

}  // namespace

std::unique_ptr<IdleSource> openWaylandIdleSource(const SteadyClock& clock,
                                                  std::shared_ptr<WaylandConnection> connection) {
  if (!connection->offers(wl_seat_interface.name)) return nullptr;
  if (connection->offers(CommonIdle::kInterface.name)) {
    return std::make_unique<WaylandIdleSource<CommonIdle>>(clock, std::move(connection));
  }
  if (connection->offers(KWinIdle::kInterface.name)) {
    return std::make_unique<WaylandIdleSource<KWinIdle>>(clock, std::move(connection));
  }
  return nullptr;
}

}  // namespace tessum
