#include "core/workspace/wayland/connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "core/platform/descriptor.h"
#include "core/workspace/desktop_sources.h"

namespace tessum {
namespace {

using Clock = std::chrono::steady_clock;
using Readiness = SystemMainLoop::Readiness;

// A name without a slash is that of a socket in the user's runtime folder.
std::string socketPath(const std::string& display) {
  if (display.starts_with('/')) return display;
  const char* folder = std::getenv("XDG_RUNTIME_DIR");
  return std::string(folder == nullptr ? "" : folder) + "/" + display;
}

constexpr const char* kSilent = "The Wayland display does not answer";

// The library's own way to connect would wait for ever for a stopped compositor whose queue is
// full. Holds no descriptor when none listens.
Descriptor connectedSocket(const std::string& display) {
  const std::string path = socketPath(display);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return Descriptor(-1);
  std::copy(path.begin(), path.end(), address.sun_path);
  Descriptor made(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const timeval patience{.tv_sec = static_cast<time_t>(WaylandConnection::kPatienceSeconds),
                         .tv_usec = 0};
  setsockopt(made.number(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
  const int result = retried([&] {
    return connect(made.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  });
  if (result == 0) return made;
  if (errno == EAGAIN) throw WorkspaceUnavailable(std::string(kSilent) + ".");
  return Descriptor(-1);
}

// Sends the requests that wait. False when the socket takes no more for now.
bool sendsAll(wl_display* display) {
  return wl_display_flush(display) >= 0 || errno != EAGAIN;
}

// Prepares for reading by handling what was read before. False when the connection is lost.
bool prepareToRead(wl_display* display) {
  while (wl_display_prepare_read(display) != 0) {
    if (wl_display_dispatch_pending(display) < 0) return false;
  }
  return true;
}

int millisecondsUntil(Clock::time_point moment) {
  const auto rest = std::chrono::ceil<std::chrono::milliseconds>(moment - Clock::now());
  return static_cast<int>(std::max<std::int64_t>(rest.count(), 0));
}

// Waits for events and handles them. False when none came before `deadline`, or none will.
bool handleEventsUntil(Clock::time_point deadline, wl_display* display) {
  if (!prepareToRead(display)) return false;
  const bool hasSent = sendsAll(display);
  pollfd socket{wl_display_get_fd(display), static_cast<short>(POLLIN | (hasSent ? 0 : POLLOUT)),
                0};
  const int ready = poll(&socket, 1, millisecondsUntil(deadline));
  if (ready > 0 && (socket.revents & ~POLLOUT) != 0) {
    wl_display_read_events(display);
  } else {
    wl_display_cancel_read(display);
  }
  wl_display_dispatch_pending(display);
  return ready != 0 && wl_display_get_error(display) == 0;
}

}  // namespace

void WaylandFree::operator()(void* proxy) const {
  wl_proxy_destroy(static_cast<wl_proxy*>(proxy));
}

void WaylandConnection::Disconnect::operator()(wl_display* display) const {
  wl_display_disconnect(display);
}

// What the library calls.
struct WaylandConnection::Events {
  static void onGlobal(void* self, wl_registry*, std::uint32_t name, const char* interface,
                       std::uint32_t version) noexcept {
    static_cast<WaylandConnection*>(self)->globals_.try_emplace(interface, Global{name, version});
  }

  static void onGlobalRemoved(void* self, wl_registry*, std::uint32_t name) noexcept {
    std::erase_if(static_cast<WaylandConnection*>(self)->globals_,
                  [&](const auto& global) { return global.second.name == name; });
  }

  static void onAnswer(void* self, wl_callback*, std::uint32_t) noexcept {
    static_cast<WaylandConnection*>(self)->question_.reset();
  }

  static constexpr wl_registry_listener kRegistry{.global = onGlobal,
                                                  .global_remove = onGlobalRemoved};
  static constexpr wl_callback_listener kCallback{.done = onAnswer};
};

std::unique_ptr<WaylandConnection> WaylandConnection::open(SystemMainLoop& loop,
                                                           const SteadyClock& clock,
                                                           const std::string& display) {
  Descriptor socket = connectedSocket(display);
  if (socket.number() < 0) return nullptr;
  return std::unique_ptr<WaylandConnection>(new WaylandConnection(loop, clock, socket.release()));
}

WaylandConnection::WaylandConnection(SystemMainLoop& loop, const SteadyClock& clock, int socket)
    : loop_(loop), clock_(clock), heardAt_(clock.now()) {
  // By itself the library would print on standard error what the listeners are told.
  wl_log_set_handler_client([](const char*, va_list) {});
  display_.reset(wl_display_connect_to_fd(socket));
  if (!display_) throw std::bad_alloc();
  registry_.reset(wl_display_get_registry(display_.get()));
  wl_registry_add_listener(registry_.get(), &Events::kRegistry, this);
  if (const auto loss = roundTrip()) throw WorkspaceUnavailable(loss->reason + ".");
  watch_ = loop_.watchReadable(wl_display_get_fd(display_.get()), [this] { process(); });
  timer_ = loop_.startTimer(kAskEverySeconds, [this] { ask(); });
}

WaylandConnection::~WaylandConnection() {
  disarm();
}

bool WaylandConnection::offers(std::string_view interface, std::uint32_t version) const {
  const auto found = globals_.find(interface);
  return found != globals_.end() && found->second.version >= version;
}

void* WaylandConnection::bindAny(const wl_interface& interface, std::uint32_t version) {
  const auto found = globals_.find(interface.name);
  if (found == globals_.end()) return nullptr;
  const auto [name, highest] = found->second;
  return wl_registry_bind(registry_.get(), name, &interface, std::min(highest, version));
}

std::optional<WaylandLoss> WaylandConnection::roundTrip() {
  const auto patience = std::chrono::duration<double>(kPatienceSeconds);
  const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(patience);
  question_.reset(wl_display_sync(display_.get()));
  wl_callback_add_listener(question_.get(), &Events::kCallback, this);
  while (question_ && Clock::now() < deadline) {
    if (!handleEventsUntil(deadline, display_.get())) break;
    heardAt_ = clock_.now();
  }
  return question_ ? std::optional(loss()) : std::nullopt;
}

void WaylandConnection::flush() {
  if (!watch_) return;
  const bool hasSent = sendsAll(display_.get());
  loop_.setReadiness(*watch_, hasSent ? Readiness::readable : Readiness::readableOrWritable);
}

WaylandConnection::ListenerToken WaylandConnection::addListener(Listener listener) {
  const ListenerToken token{++lastToken_};
  listeners_[token] = std::move(listener);
  return token;
}

void WaylandConnection::removeListener(ListenerToken token) {
  listeners_.erase(token);
}

// Reading does not wait when there is nothing to read.
void WaylandConnection::process() {
  if (prepareToRead(display_.get())) wl_display_read_events(display_.get());
  wl_display_dispatch_pending(display_.get());
  const bool isGood = !isCut();
  tell([](const Listener& listener) {
    if (listener.onEvents) listener.onEvents();
  });
  if (isGood) heardAt_ = clock_.now();
  flush();
  if (isCut()) lose();
}

void WaylandConnection::ask() {
  if (question_) return lose();
  question_.reset(wl_display_sync(display_.get()));
  wl_callback_add_listener(question_.get(), &Events::kCallback, this);
  flush();
}

bool WaylandConnection::isCut() const {
  return wl_display_get_error(display_.get()) != 0;
}

WaylandLoss WaylandConnection::loss() const {
  if (!isCut()) return {kSilent, heardAt_};
  if (!question_) return {"The Wayland display has gone away", clock_.now()};
  return {
      "The Wayland compositor has ended the connection, as some do when a window has a title of "
      "thousands of letters",
      heardAt_};
}

void WaylandConnection::lose() {
  disarm();
  tell([loss = loss()](const Listener& listener) {
    if (listener.onLost) listener.onLost(loss);
  });
}

void WaylandConnection::disarm() {
  if (watch_) loop_.unwatch(*std::exchange(watch_, std::nullopt));
  if (timer_) loop_.invalidateTimer(*std::exchange(timer_, std::nullopt));
}

// A listener may remove itself and others, so each is looked up when its turn comes and copied
// before it runs.
void WaylandConnection::tell(const std::function<void(const Listener&)>& telling) {
  std::vector<ListenerToken> tokens;
  for (const auto& [token, listener] : listeners_) tokens.push_back(token);
  for (const ListenerToken token : tokens) {
    const auto found = listeners_.find(token);
    if (found == listeners_.end()) continue;
    const Listener listener = found->second;
    telling(listener);
  }
}

}  // namespace tessum
