// A connection to a message bus of D-Bus, over which programs of the desktop and of the system
// talk.
//
// The main loop drives it and nothing waits: a bus that is missing, slow or silent costs nothing
// but a look now and then. A connection that is lost is made again, after a second and then twice
// as late each time, up to a minute. What was asked or subscribed on the old one is over by then;
// users do it anew each time they are told of a connection, most simply through BusName.

#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/bus/bus_message.h"
#include "core/loop/system_main_loop.h"

struct sd_bus;
struct sd_bus_slot;

namespace tessum {

struct BusSlotRelease {
  void operator()(sd_bus_slot* slot) const;
};

// A call or a subscription under way. Without it the handler is not called any more; a handler may
// drop its own. Null where there is no connection; it may outlive the bus.
using BusSlot = std::unique_ptr<sd_bus_slot, BusSlotRelease>;

using BusArgument = std::variant<bool, std::uint32_t, std::uint64_t, std::string>;

// A method to call. Its parts are names as D-Bus writes them.
struct BusCall {
  std::string destination;  // a unique name such as ":1.7", see BusName, or the bus itself
  std::string path;
  std::string interface;
  std::string member;
  std::vector<BusArgument> arguments = {};
};

// The call that reads a property; the answer holds a BusVariant.
[[nodiscard]] BusCall busProperty(std::string destination, std::string path, std::string interface,
                                  std::string property);

// The call that reads all properties of an interface; the answer holds a BusDictionary.
[[nodiscard]] BusCall busProperties(std::string destination, std::string path,
                                    std::string interface);

// Signals to be told of. An empty part fits all, but the sender cannot be empty.
struct BusSignal {
  std::string sender;  // as BusCall::destination
  std::string path = {};
  std::string interface = {};
  std::string member = {};
  std::string firstArgument = {};  // a text
};

// The destination and sender of what the bus itself answers and tells.
inline constexpr char kBusItself[] = "org.freedesktop.DBus";

// One connection. Main thread only. None of the handlers may destroy it.
class Bus {
 public:
  // The bus of the user's session, or that of the whole computer. The environment says where each
  // is: DBUS_SESSION_BUS_ADDRESS, or XDG_RUNTIME_DIR, and DBUS_SYSTEM_BUS_ADDRESS.
  enum class Kind { session, system };

  struct Timing {
    double connectSeconds = 25;  // for a connection to be made; it is tried again afterwards
    double firstRetrySeconds = 1;
    double longestRetrySeconds = 60;
  };

  // Names one listener of one bus; never used twice.
  enum class ListenerToken : std::uint64_t {};

  struct Listener {  // each may be null
    std::function<void()> onConnected = nullptr;
    std::function<void()> onLost = nullptr;
  };

  using MessageHandler = std::function<void(const BusMessage&)>;

  // Starts to connect. `loop` must outlive it. Without an address it never will.
  Bus(SystemMainLoop& loop, Kind kind) : Bus(loop, kind, Timing{}) {}
  Bus(SystemMainLoop& loop, Kind kind, Timing timing);
  ~Bus();
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  // Tells of each connection and its loss, from the loop, starting with the next one.
  ListenerToken addListener(Listener listener);

  // Ends that. A listener that has been removed is no error.
  void removeListener(ListenerToken token);

  // Whether calls and subscriptions are possible.
  [[nodiscard]] bool isConnected() const { return isConnected_; }

  // Calls a method. `onReply` is called once, with the answer or an error, unless the connection is
  // lost before. There is no time limit: a program that hangs may answer once it goes on. No
  // program is started for the call.
  [[nodiscard]] BusSlot call(const BusCall& call, MessageHandler onReply);

  // Calls `onSignal` for each such signal that is sent from now on.
  [[nodiscard]] BusSlot subscribe(const BusSignal& signal, MessageHandler onSignal);

 private:
  struct Release {
    void operator()(sd_bus* bus) const;
  };
  struct Handler;

  using SteadyTime = std::chrono::steady_clock::time_point;

  void connect();
  void lose();
  void process();
  void processMessages();
  void tell(std::function<void()> Listener::*event);

  // Runs a handler. What it throws goes around the library, which is written in C, to rethrow().
  void run(const std::function<void()>& task);
  void rethrow();

  [[nodiscard]] BusSlot adopt(int result, sd_bus_slot* slot, std::unique_ptr<Handler> handler);

  // Has the loop wait for what the connection waits for.
  void rearm();
  void processAt(std::uint64_t deadline);  // microseconds of the monotonic clock
  void disarm();

  SystemMainLoop& loop_;
  const Kind kind_;
  const Timing timing_;
  std::unique_ptr<sd_bus, Release> bus_;  // null between two attempts
  bool isConnected_ = false;
  bool hasFailed_ = false;  // the connection is of no use any more
  bool isRunningHandler_ = false;
  std::exception_ptr thrown_;  // by a handler
  double retrySeconds_;        // how long to wait after the next loss
  SteadyTime connectedAt_;
  int watched_ = -1;  // the descriptor of watch_
  std::optional<SystemMainLoop::WatchToken> watch_;
  std::optional<MainLoop::TimerToken> processTimer_;
  std::optional<MainLoop::TimerToken> attemptTimer_;  // ends an attempt, or starts the next
  std::map<ListenerToken, Listener> listeners_;
  std::uint64_t lastToken_ = 0;
};

}  // namespace tessum
