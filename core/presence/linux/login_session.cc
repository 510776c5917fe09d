#include "core/presence/linux/login_session.h"

#include <cstdlib>
#include <utility>

#include "core/base/text.h"
#include "core/presence/linux/logind.h"

namespace tessum {
namespace {

// For versions of logind without "auto", and for programs outside any session.
std::string sessionOfEnvironment() {
  const char* id = std::getenv("XDG_SESSION_ID");
  return id != nullptr ? validUtf8(id) : "";
}

}  // namespace

LoginSession::LoginSession(Bus& system, Handlers handlers)
    : system_(system),
      handlers_(std::move(handlers)),
      name_(system, logind::kName, [this](const std::string& owner) { start(owner); }) {}

void LoginSession::start(const std::string& owner) {
  owner_ = owner;
  added_ = nullptr;
  removed_ = nullptr;
  question_ = nullptr;
  forget();
  if (owner.empty()) return;

  BusSignal signal{.sender = owner, .path = logind::kPath, .interface = logind::kManager};
  signal.member = "SessionNew";
  added_ = system_.subscribe(signal, [this](const BusMessage&) {
    if (id_.empty()) find();
  });
  signal.member = "SessionRemoved";
  removed_ = system_.subscribe(signal, [this](const BusMessage& message) {
    const auto removed = message.read<std::string, BusObjectPath>();
    if (!removed || id_.empty() || std::get<0>(*removed) != id_) return;
    handlers_.onOver(true);
    forget();
  });
  find();
}

void LoginSession::find() {
  question_ = system_.call(
      busProperty(owner_, "/org/freedesktop/login1/session/auto", logind::kSession, "Id"),
      [this](const BusMessage& reply) {
        const auto id = reply.readOne<BusVariant<std::string>>();
        locate(id ? id->value : sessionOfEnvironment());
      });
}

void LoginSession::locate(const std::string& id) {
  if (id.empty()) return;
  question_ = system_.call({owner_, logind::kPath, logind::kManager, "GetSession", {id}},
                           [this, id](const BusMessage& reply) {
                             const auto path = reply.readOne<BusObjectPath>();
                             if (path) follow(id, path->text);
                           });
}

void LoginSession::follow(const std::string& id, const std::string& path) {
  id_ = id;
  path_ = path;
  changes_ = system_.subscribe({.sender = owner_,
                                .path = path,
                                .interface = "org.freedesktop.DBus.Properties",
                                .member = "PropertiesChanged",
                                .firstArgument = logind::kSession},
                               [this](const BusMessage&) { ask(); });
  BusSignal signal{.sender = owner_, .path = path, .interface = logind::kSession};
  signal.member = "Lock";
  lockRequests_ =
      system_.subscribe(signal, [this](const BusMessage&) { handlers_.onLockRequest(); });
  signal.member = "Unlock";
  unlockRequests_ =
      system_.subscribe(signal, [this](const BusMessage&) { handlers_.onUnlockRequest(); });
  ask();
}

void LoginSession::forget() {
  id_.clear();
  changes_ = nullptr;
  lockRequests_ = nullptr;
  unlockRequests_ = nullptr;
  hintQuestion_ = nullptr;
  stateQuestion_ = nullptr;
  isHintSet_ = false;
  isInFront_ = true;
  tellLocked();
}

void LoginSession::ask() {
  hintQuestion_ = system_.call(busProperty(owner_, path_, logind::kSession, "LockedHint"),
                               [this](const BusMessage& reply) {
                                 const auto hint = reply.readOne<BusVariant<bool>>();
                                 if (hint) isHintSet_ = hint->value;
                                 tellLocked();
                               });
  stateQuestion_ = system_.call(busProperty(owner_, path_, logind::kSession, "State"),
                                [this](const BusMessage& reply) { takeState(reply); });
}

// The state is "active" in front, "online" in the background, and "opening" or "closing" during the
// transition.
void LoginSession::takeState(const BusMessage& reply) {
  const auto state = reply.readOne<BusVariant<std::string>>();
  if (state) isInFront_ = state->value != "online";
  tellLocked();
  handlers_.onOver(state && state->value == "closing");
}

void LoginSession::tellLocked() {
  handlers_.onLocked(isHintSet_ || !isInFront_);
}

}  // namespace tessum
