// A connection to a Wayland compositor.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/loop/system_main_loop.h"
#include "core/platform/steady_clock.h"

struct wl_callback;
struct wl_display;
struct wl_interface;
struct wl_registry;

namespace tessum {

// Frees one of the library's objects on this side of the connection. The compositor keeps its part
// until the connection ends.
struct WaylandFree {
  void operator()(void* proxy) const;
};
template <typename Proxy>
using WaylandOwned = std::unique_ptr<Proxy, WaylandFree>;

// Why a connection is lost.
struct WaylandLoss {
  std::string reason;  // for a person, without a full stop
  Moment since;        // the compositor may have sent nothing since then
};

// The main loop drives it from the start. Whatever is made from it must be destroyed before it.
// Main thread only.
//
// When an event has a text that is too long to be sent, a compositor sends the program no more
// events, but it ends the connection only at the program's next request. So the connection makes a
// request from time to time.
//
// The library, which is written in C, calls the listeners of its objects: they must not throw. They
// note the events, and act on them once WaylandConnection::Listener::onEvents is called.
class WaylandConnection {
 public:
  static constexpr double kPatienceSeconds = 10;  // for answers that are waited for
  static constexpr double kAskEverySeconds = 30;  // whether the connection is still good

  // Identifies one listener of one connection; never reused.
  enum class ListenerToken : std::uint64_t {};

  struct Listener {                                            // each may be null
    std::function<void()> onEvents = nullptr;                  // after events that came in
    std::function<void(const WaylandLoss&)> onLost = nullptr;  // once
  };

  // Connects to the compositor that `display` names as WAYLAND_DISPLAY does. Null when none listens
  // there. Throws WorkspaceUnavailable when it does not answer. `loop` and `clock` must outlive the
  // connection.
  [[nodiscard]] static std::unique_ptr<WaylandConnection> open(SystemMainLoop& loop,
                                                               const SteadyClock& clock,
                                                               const std::string& display);
  ~WaylandConnection();
  WaylandConnection(const WaylandConnection&) = delete;
  WaylandConnection& operator=(const WaylandConnection&) = delete;

  // Whether the compositor has an object of the interface of that name for this program, in that
  // version or a higher one.
  [[nodiscard]] bool offers(std::string_view interface, std::uint32_t version = 1) const;

  // The first such object, in the highest version up to `version`, which is the one that the caller
  // knows. Null when there is none.
  template <typename Proxy>
  [[nodiscard]] WaylandOwned<Proxy> bind(const wl_interface& interface, std::uint32_t version) {
    return WaylandOwned<Proxy>(static_cast<Proxy*>(bindAny(interface, version)));
  }

  // Waits until the compositor has answered all requests so far, without calling the listeners.
  // Gives what kept it from doing so within kPatienceSeconds, and absent otherwise.
  [[nodiscard]] std::optional<WaylandLoss> roundTrip();

  // Sends the requests so far. They are also sent after each call of a listener.
  void flush();

  // Notifies `listener` of events, and of the end of the connection, from the loop.
  ListenerToken addListener(Listener listener);

  // Does nothing if the listener has already been removed.
  void removeListener(ListenerToken token);

 private:
  struct Disconnect {
    void operator()(wl_display* display) const;
  };
  struct Global {
    std::uint32_t name = 0;
    std::uint32_t version = 0;
  };
  struct Events;

  WaylandConnection(SystemMainLoop& loop, const SteadyClock& clock, int socket);
  [[nodiscard]] void* bindAny(const wl_interface& interface, std::uint32_t version);
  void process();
  void ask();
  [[nodiscard]] bool isCut() const;
  [[nodiscard]] WaylandLoss loss() const;
  void lose();
  void disarm();
  void tell(const std::function<void(const Listener&)>& telling);

  SystemMainLoop& loop_;
  const SteadyClock& clock_;
  std::unique_ptr<wl_display, Disconnect> display_;
  WaylandOwned<wl_registry> registry_;
  std::map<std::string, Global, std::less<>> globals_;  // by interface, the first of each
  std::map<ListenerToken, Listener> listeners_;
  std::uint64_t lastToken_ = 0;
  WaylandOwned<wl_callback> question_;               // not answered yet
  Moment heardAt_;                                   // when the compositor last sent anything
  std::optional<SystemMainLoop::WatchToken> watch_;  // until the connection is lost
  std::optional<MainLoop::TimerToken> timer_;        // likewise, for the questions
};

}  // namespace tessum
