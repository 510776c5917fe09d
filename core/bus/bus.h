// A connection to a D-Bus message bus, over which desktop and system programs communicate.
//
// The main loop drives it and it never blocks: a missing, slow or silent bus costs only an
// occasional attempt to connect. A lost connection is retried after a second, then after twice as
// long each time, up to a minute. Calls and subscriptions end with their connection; users make
// them again each time they are notified of a connection, most simply through BusName.

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

// A pending call or a subscription. Destroying it ensures that the handler is not called again; a
// handler may destroy its own. Null when there is no connection; it may outlive the bus.
using BusSlot = std::unique_ptr<sd_bus_slot, BusSlotRelease>;

using BusArgument = std::variant<bool, std::uint32_t, std::uint64_t, std::string>;

// A method to call. Its members are names in D-Bus syntax.
struct BusCall {
  std::string destination;  // a unique name such as ":1.7", see BusName, or the bus itself
  std::string path;
  std::string interface;
  std::string member;
  std::vector<BusArgument> arguments = {};
};

// The call that reads a property; the reply holds a BusVariant.
[[nodiscard]] BusCall busProperty(std::string destination, std::string path, std::string interface,
                                  std::string property);

// The call that reads all properties of an interface; the answer holds a BusDictionary.
[[nodiscard]] BusCall busProperties(std::string destination, std::string path,
                                    std::string interface);

// The signals to receive. An empty part matches any, but the sender must not be empty.
struct BusSignal {
  std::string sender;  // as BusCall::destination
  std::string path = {};
  std::string interface = {};
  std::string member = {};
  std::string firstArgument = {};  // a text
};

// A method that one other program may call.
struct BusMethod {
  std::string caller;  // its unique name
  std::string path;
  std::string interface;
  std::string member;
};

// The bus's own name, as destination and sender.
inline constexpr char kBusItself[] = "org.freedesktop.DBus";

// One connection. Main thread only. None of the handlers may destroy it.
class Bus {
 public:
  // The bus of the user's session, or that of the whole computer. The environment gives their
  // addresses: DBUS_SESSION_BUS_ADDRESS or XDG_RUNTIME_DIR, and DBUS_SYSTEM_BUS_ADDRESS.
  enum class Kind { session, system };

  struct Timing {
    double connectSeconds = 25;  // time limit of an attempt; another one follows
    double firstRetrySeconds = 1;
    double longestRetrySeconds = 60;
  };

  // Identifies one listener of one bus; never reused.
  enum class ListenerToken : std::uint64_t {};

  struct Listener {  // each may be null
    std::function<void()> onConnected = nullptr;
    std::function<void()> onLost = nullptr;
  };

  using MessageHandler = std::function<void(const BusMessage&)>;

  // Starts to connect. `loop` must outlive it. Without an address it never connects.
  Bus(SystemMainLoop& loop, Kind kind) : Bus(loop, kind, Timing{}) {}
  Bus(SystemMainLoop& loop, Kind kind, Timing timing);
  ~Bus();
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  // Notifies `listener` of each connection and its loss, from the loop, starting with the next one.
  ListenerToken addListener(Listener listener);

  // Does nothing if the listener has already been removed.
  void removeListener(ListenerToken token);

  // Whether calls and subscriptions are possible.
  [[nodiscard]] bool isConnected() const { return isConnected_; }

  // The unique name of this program, such as ":1.7"; empty while not connected.
  [[nodiscard]] std::string uniqueName() const;

  // Calls a method. `onReply` is called once, with the reply or an error, unless the connection is
  // lost first. There is no time limit: a program that hangs may reply once it resumes. The call
  // does not start a program.
  [[nodiscard]] BusSlot call(const BusCall& call, MessageHandler onReply);

  // Calls `onSignal` for each matching signal from now on.
  [[nodiscard]] BusSlot subscribe(const BusSignal& signal, MessageHandler onSignal);

  // Calls `onCall` for each call of the method, which gets an empty reply. Other calls get an
  // error. One method for each path.
  [[nodiscard]] BusSlot offer(const BusMethod& method, MessageHandler onCall);

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

  // Runs a handler. An exception must not pass through the library, which is written in C, so it is
  // stored for rethrow().
  void run(const std::function<void()>& task);
  void rethrow();

  [[nodiscard]] BusSlot adopt(int result, sd_bus_slot* slot, std::unique_ptr<Handler> handler);

  // Makes the loop wait for what the connection waits for.
  void rearm();
  void processAt(std::uint64_t deadline);  // microseconds of the monotonic clock
  void disarm();

  SystemMainLoop& loop_;
  const Kind kind_;
  const Timing timing_;
  std::unique_ptr<sd_bus, Release> bus_;  // null between two attempts
  bool isConnected_ = false;
  bool hasFailed_ = false;  // the connection is no longer usable
  bool isRunningHandler_ = false;
  std::exception_ptr thrown_;  // by a handler
  double retrySeconds_;        // the delay after the next loss
  SteadyTime connectedAt_;
  int watched_ = -1;  // the descriptor of watch_
  std::optional<SystemMainLoop::WatchToken> watch_;
  std::optional<MainLoop::TimerToken> processTimer_;
  std::optional<MainLoop::TimerToken> attemptTimer_;  // ends an attempt, or starts the next
  std::map<ListenerToken, Listener> listeners_;
  std::uint64_t lastToken_ = 0;
};

}  // namespace tessum
