// The compositor's idle monitor counts the time without input, and signals when a watch fires. A
// watch for idleness fires each time that the count reaches its interval, at once if it is already
// past, and stays. A watch for activity fires once, at the next input after it was set.
//
// A signal is only a reason to look: the count decides. We ask for it after we have set a watch for
// activity, so an input that came before the watch shows in the count.

#include "core/workspace/gnome/idle_source.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/bus/bus_name.h"

namespace tessum {
namespace {

constexpr char kMonitorName[] = "org.gnome.Mutter.IdleMonitor";
constexpr char kMonitorPath[] = "/org/gnome/Mutter/IdleMonitor/Core";
constexpr char kInterface[] = "org.gnome.Mutter.IdleMonitor";

class GnomeIdleSource final : public IdleSource {
 public:
  GnomeIdleSource(const SteadyClock& clock, std::shared_ptr<Bus> session)
      : clock_(clock),
        session_(std::move(session)),
        name_(*session_, kMonitorName, [this](const std::string& owner) {
          owner_ = owner;
          begin();
        }) {}

  ~GnomeIdleSource() override { removeWatch(); }

  void watch(double seconds, Handlers handlers) override {
    removeWatch();
    interval_ =
        static_cast<std::uint64_t>(std::max(std::llround(seconds * kMillisecondsPerSecond), 1LL));
    handlers_ = std::move(handlers);
    isIdle_ = false;
    begin();
  }

 private:
  // Calls to the previous owner of the name are void.
  void begin() {
    fired_ = nullptr;
    added_ = nullptr;
    question_ = nullptr;
    idleWatch_ = 0;
    if (owner_.empty() || interval_ == 0) return;
    fired_ = session_->subscribe(
        {.sender = owner_, .path = kMonitorPath, .interface = kInterface, .member = "WatchFired"},
        [this](const BusMessage& signal) {
          if (const auto watch = signal.readOne<std::uint32_t>()) takeFired(*watch);
        });
    added_ = call("AddIdleWatch", {interval_}, [this](const BusMessage& reply) {
      idleWatch_ = reply.readOne<std::uint32_t>().value_or(0);
    });
    if (isIdle_) look();  // somebody may have come back unreported
  }

  // A leftover watch for activity fires at any input, which tells us nothing new.
  void takeFired(std::uint32_t watch) {
    if (isIdle_ || watch == idleWatch_ || idleWatch_ == 0) look();
  }

  void look() {
    static_cast<void>(call("AddUserActiveWatch", {}, [](const BusMessage&) {}));
    question_ = call("GetIdletime", {}, [this](const BusMessage& reply) {
      if (const auto milliseconds = reply.readOne<std::uint64_t>()) take(*milliseconds);
    });
  }

  void take(std::uint64_t milliseconds) {
    const bool isIdle = milliseconds >= interval_;
    if (isIdle == std::exchange(isIdle_, isIdle)) return;
    const auto handler = isIdle ? handlers_.onIdle : handlers_.onActive;  // it may watch anew
    handler(movedBy(clock_.now(), -static_cast<double>(milliseconds) / kMillisecondsPerSecond));
  }

  void removeWatch() {
    if (idleWatch_ == 0) return;
    static_cast<void>(
        call("RemoveWatch", {std::exchange(idleWatch_, 0)}, [](const BusMessage&) {}));
  }

  [[nodiscard]] BusSlot call(const char* method, std::vector<BusArgument> arguments,
                             Bus::MessageHandler onReply) {
    return session_->call({owner_, kMonitorPath, kInterface, method, std::move(arguments)},
                          std::move(onReply));
  }

  const SteadyClock& clock_;
  const std::shared_ptr<Bus> session_;
  std::string owner_;           // of the name
  std::uint64_t interval_ = 0;  // in milliseconds; 0 until there is something to watch
  Handlers handlers_;
  bool isIdle_ = false;          // as reported last
  std::uint32_t idleWatch_ = 0;  // its number; 0 while it is not known
  BusSlot fired_;
  BusSlot added_;
  BusSlot question_;
  BusName name_;
};

}  // namespace

std::unique_ptr<IdleSource> openGnomeIdleSource(const SteadyClock& clock,
                                                std::shared_ptr<Bus> session) {
  return std::make_unique<GnomeIdleSource>(clock, std::move(session));
}

}  // namespace tessum
