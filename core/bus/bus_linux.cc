#include "core/bus/bus.h"

#include <poll.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "core/base/check.h"

namespace tessum {
namespace {

constexpr char kProperties[] = "org.freedesktop.DBus.Properties";

// At most this many messages are handled in one turn of the loop, so that a busy bus leaves time
// for the rest of the program.
constexpr int kMessagesPerTurn = 64;

constexpr std::uint64_t kNever = UINT64_MAX;  // as a deadline and as a time limit

SystemMainLoop::Readiness readinessFor(int events) {
  using enum SystemMainLoop::Readiness;
  const bool isReading = (events & POLLIN) != 0;
  const bool isWriting = (events & POLLOUT) != 0;
  if (isWriting) return isReading ? readableOrWritable : writable;
  return readable;
}

// `deadline` counts microseconds on the monotonic clock.
double secondsUntil(std::uint64_t deadline) {
  const std::chrono::steady_clock::time_point due{std::chrono::microseconds(deadline)};
  const std::chrono::duration<double> rest = due - std::chrono::steady_clock::now();
  return std::max(rest.count(), 0.0);
}

// No value contains a character that needs quoting.
void appendCondition(std::string& rule, const char* key, const std::string& value) {
  if (!value.empty()) rule += std::string(",") + key + "='" + value + "'";
}

std::string matchRule(const BusSignal& signal) {
  std::string rule = "type='signal'";
  appendCondition(rule, "sender", signal.sender);
  appendCondition(rule, "path", signal.path);
  appendCondition(rule, "interface", signal.interface);
  appendCondition(rule, "member", signal.member);
  appendCondition(rule, "arg0", signal.firstArgument);
  return rule;
}

int append(sd_bus_message* message, bool value) {
  const int number = value ? 1 : 0;
  return sd_bus_message_append_basic(message, SD_BUS_TYPE_BOOLEAN, &number);
}

int append(sd_bus_message* message, std::uint32_t value) {
  return sd_bus_message_append_basic(message, SD_BUS_TYPE_UINT32, &value);
}

int append(sd_bus_message* message, std::uint64_t value) {
  return sd_bus_message_append_basic(message, SD_BUS_TYPE_UINT64, &value);
}

int append(sd_bus_message* message, const std::string& value) {
  return sd_bus_message_append_basic(message, SD_BUS_TYPE_STRING, value.c_str());
}

struct MessageRelease {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, MessageRelease>;

}  // namespace

// A slot's handler; it is destroyed with the slot.
struct Bus::Handler {
  Bus& bus;
  std::string sender;  // empty for a reply, which can only come from the callee
  MessageHandler handle;
  std::string interface = {};  // of an offered method
  std::string member = {};

  // Another program can send this one a message that looks like a subscribed signal, but only the
  // bus sets the sender.
  static int onMessage(sd_bus_message* message, void* self, sd_bus_error*) {
    const Handler& handler = *static_cast<Handler*>(self);
    const char* sender = sd_bus_message_get_sender(message);
    if (!handler.sender.empty() && (sender == nullptr || handler.sender != sender)) return 0;
    handler.bus.run([&] { handler.handle(BusMessage(message)); });
    return 0;
  }

  // The same for a call of an offered method.
  static int onCall(sd_bus_message* message, void* self, sd_bus_error*) {
    const Handler& handler = *static_cast<Handler*>(self);
    const char* sender = sd_bus_message_get_sender(message);
    const bool isMeant = sender != nullptr && handler.sender == sender &&
                         sd_bus_message_is_method_call(message, handler.interface.c_str(),
                                                       handler.member.c_str()) > 0;
    if (!isMeant) return 0;
    sd_bus_reply_method_return(message, "");
    handler.bus.run([&] { handler.handle(BusMessage(message)); });
    return 1;
  }

  static void destroy(void* self) { delete static_cast<Handler*>(self); }
};

void BusSlotRelease::operator()(sd_bus_slot* slot) const {
  sd_bus_slot_unref(slot);
}

void Bus::Release::operator()(sd_bus* bus) const {
  sd_bus_close_unref(bus);
}

BusCall busProperty(std::string destination, std::string path, std::string interface,
                    std::string property) {
  return {std::move(destination),
          std::move(path),
          kProperties,
          "Get",
          {std::move(interface), std::move(property)}};
}

BusCall busProperties(std::string destination, std::string path, std::string interface) {
  return {std::move(destination), std::move(path), kProperties, "GetAll", {std::move(interface)}};
}

Bus::Bus(SystemMainLoop& loop, Kind kind, Timing timing)
    : loop_(loop), kind_(kind), timing_(timing), retrySeconds_(timing.firstRetrySeconds) {
  connect();
}

Bus::~Bus() {
  TESSUM_CHECK(!isRunningHandler_, "a handler of a bus destroys it");
  disarm();
}

Bus::ListenerToken Bus::addListener(Listener listener) {
  const ListenerToken token{++lastToken_};
  listeners_[token] = std::move(listener);
  return token;
}

void Bus::removeListener(ListenerToken token) {
  listeners_.erase(token);
}

BusSlot Bus::call(const BusCall& call, MessageHandler onReply) {
  if (!isConnected_) return nullptr;
  sd_bus_message* made = nullptr;
  int result =
      sd_bus_message_new_method_call(bus_.get(), &made, call.destination.c_str(), call.path.c_str(),
                                     call.interface.c_str(), call.member.c_str());
  const Message message(made);
  if (result >= 0) result = sd_bus_message_set_auto_start(message.get(), 0);
  for (const BusArgument& argument : call.arguments) {
    if (result < 0) break;
    result = std::visit([&](const auto& value) { return append(message.get(), value); }, argument);
  }

  auto handler = std::make_unique<Handler>(Handler{*this, "", std::move(onReply)});
  sd_bus_slot* slot = nullptr;
  if (result >= 0) {
    result = sd_bus_call_async(bus_.get(), &slot, message.get(), Handler::onMessage, handler.get(),
                               kNever);
  }
  return adopt(result, slot, std::move(handler));
}

// The library disconnects from a bus that refuses a subscription or does not reply to it.
BusSlot Bus::subscribe(const BusSignal& signal, MessageHandler onSignal) {
  if (!isConnected_) return nullptr;
  auto handler = std::make_unique<Handler>(Handler{*this, signal.sender, std::move(onSignal)});
  sd_bus_slot* slot = nullptr;
  const int result = sd_bus_add_match_async(bus_.get(), &slot, matchRule(signal).c_str(),
                                            Handler::onMessage, nullptr, handler.get());
  return adopt(result, slot, std::move(handler));
}

BusSlot Bus::offer(const BusMethod& method, MessageHandler onCall) {
  if (!isConnected_) return nullptr;
  auto handler = std::make_unique<Handler>(
      Handler{*this, method.caller, std::move(onCall), method.interface, method.member});
  sd_bus_slot* slot = nullptr;
  const int result =
      sd_bus_add_object(bus_.get(), &slot, method.path.c_str(), Handler::onCall, handler.get());
  return adopt(result, slot, std::move(handler));
}

std::string Bus::uniqueName() const {
  const char* name = nullptr;
  if (!isConnected_ || sd_bus_get_unique_name(bus_.get(), &name) < 0) return "";
  return name;
}

BusSlot Bus::adopt(int result, sd_bus_slot* slot, std::unique_ptr<Handler> handler) {
  TESSUM_CHECK(result != -EINVAL, "a call or subscription with a name that D-Bus does not allow");
  BusSlot owner(slot);
  if (result < 0) {
    hasFailed_ = true;
    owner = nullptr;
  } else {
    sd_bus_slot_set_destroy_callback(slot, Handler::destroy);
    static_cast<void>(handler.release());
  }
  rearm();
  return owner;
}

void Bus::connect() {
  sd_bus* made = nullptr;
  const int result = kind_ == Kind::system ? sd_bus_open_system(&made) : sd_bus_open_user(&made);
  bus_.reset(made);
  // The environment names no bus, and that does not change while the program runs.
  if (result == -ENOMEDIUM) return;
  if (result < 0) return lose();
  attemptTimer_ = loop_.runAfter(timing_.connectSeconds, [this] { lose(); });
  rearm();
}

void Bus::lose() {
  const bool wasConnected = std::exchange(isConnected_, false);
  disarm();
  bus_.reset();
  hasFailed_ = false;
  if (wasConnected && std::chrono::steady_clock::now() - connectedAt_ >
                          std::chrono::duration<double>(timing_.longestRetrySeconds)) {
    retrySeconds_ = timing_.firstRetrySeconds;
  }
  attemptTimer_ = loop_.runAfter(retrySeconds_, [this] {
    attemptTimer_.reset();
    connect();
  });
  retrySeconds_ = std::min(retrySeconds_ * 2, timing_.longestRetrySeconds);
  if (wasConnected) tell(&Listener::onLost);
  rethrow();
}

void Bus::process() {
  processMessages();
  if (hasFailed_ || sd_bus_is_open(bus_.get()) <= 0) return lose();
  rearm();
  rethrow();
}

void Bus::processMessages() {
  for (int i = 0; i < kMessagesPerTurn && !thrown_ && !hasFailed_; ++i) {
    // A closing connection fails all calls by itself.
    if (sd_bus_is_open(bus_.get()) <= 0) return;
    const int result = sd_bus_process(bus_.get(), nullptr);
    if (result < 0) hasFailed_ = true;
    if (result <= 0) return;
    if (!isConnected_ && sd_bus_is_ready(bus_.get()) > 0) {
      isConnected_ = true;
      connectedAt_ = std::chrono::steady_clock::now();
      loop_.invalidateTimer(*std::exchange(attemptTimer_, std::nullopt));
      tell(&Listener::onConnected);
    }
  }
}

// A listener may add and remove others, so each is looked up just before it is called.
void Bus::tell(std::function<void()> Listener::*event) {
  std::vector<ListenerToken> tokens;
  for (const auto& [token, listener] : listeners_) tokens.push_back(token);
  for (const ListenerToken token : tokens) {
    const auto found = listeners_.find(token);
    if (found == listeners_.end()) continue;
    const std::function<void()> task = found->second.*event;
    if (task) run(task);
  }
}

void Bus::run(const std::function<void()>& task) {
  const bool wasRunning = std::exchange(isRunningHandler_, true);
  try {
    task();
  } catch (...) {
    thrown_ = std::current_exception();
  }
  isRunningHandler_ = wasRunning;
}

void Bus::rethrow() {
  if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
}

void Bus::rearm() {
  if (hasFailed_) return processAt(0);
  const int descriptor = sd_bus_get_fd(bus_.get());
  const auto readiness = readinessFor(sd_bus_get_events(bus_.get()));
  // When the bus has several addresses, each uses a different descriptor.
  if (watch_ && watched_ == descriptor) {
    loop_.setReadiness(*watch_, readiness);
  } else {
    if (watch_) loop_.unwatch(*watch_);
    watch_ = loop_.watch(descriptor, readiness, [this] { process(); });
    watched_ = descriptor;
  }
  std::uint64_t deadline = kNever;
  static_cast<void>(sd_bus_get_timeout(bus_.get(), &deadline));
  processAt(deadline);
}

void Bus::processAt(std::uint64_t deadline) {
  if (processTimer_) loop_.invalidateTimer(*std::exchange(processTimer_, std::nullopt));
  if (deadline == kNever) return;
  processTimer_ = loop_.runAfter(secondsUntil(deadline), [this] {
    processTimer_.reset();
    process();
  });
}

void Bus::disarm() {
  if (watch_) loop_.unwatch(*std::exchange(watch_, std::nullopt));
  for (auto* timer : {&processTimer_, &attemptTimer_}) {
    if (*timer) loop_.invalidateTimer(*std::exchange(*timer, std::nullopt));
  }
}

}  // namespace tessum
