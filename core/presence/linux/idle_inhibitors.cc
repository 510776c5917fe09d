#include "core/presence/linux/idle_inhibitors.h"

#include <unistd.h>

#include <cstdint>
#include <string_view>
#include <tuple>
#include <utility>

#include "core/presence/linux/logind.h"

namespace tessum {
namespace {

// What it inhibits, who, why, the mode, the user and the process.
using Inhibitor =
    std::tuple<std::string, std::string, std::string, std::string, std::uint32_t, std::uint32_t>;

// `what` is a list such as "sleep:idle".
bool hasIdle(const std::string& what) {
  return (":" + what + ":").find(":idle:") != std::string::npos;
}

// Another user's video says nothing about this user. "block-weak" blocks, too.
std::vector<AwakeReason> idleReasons(const std::vector<Inhibitor>& inhibitors) {
  std::vector<AwakeReason> reasons;
  for (const auto& [what, who, why, mode, user, process] : inhibitors) {
    if (hasIdle(what) && mode.starts_with("block") && user == getuid()) {
      reasons.push_back({who, why});
    }
  }
  return reasons;
}

}  // namespace

IdleInhibitors::IdleInhibitors(Bus& system, AwakeReasonsHandler onReasons)
    : system_(system),
      onReasons_(std::move(onReasons)),
      name_(system, logind::kName, [this](const std::string& owner) { start(owner); }) {}

// logind announces BlockInhibited each time an inhibitor is added or removed. Few of its other
// properties change, so we do not check which one did.
void IdleInhibitors::start(const std::string& owner) {
  owner_ = owner;
  changes_ = nullptr;
  question_ = nullptr;
  if (owner.empty()) return onReasons_({});
  changes_ = system_.subscribe({.sender = owner,
                                .path = logind::kPath,
                                .interface = "org.freedesktop.DBus.Properties",
                                .member = "PropertiesChanged",
                                .firstArgument = logind::kManager},
                               [this](const BusMessage&) { ask(); });
  ask();
}

void IdleInhibitors::ask() {
  question_ = system_.call({owner_, logind::kPath, logind::kManager, "ListInhibitors"},
                           [this](const BusMessage& reply) {
                             const auto inhibitors = reply.readOne<std::vector<Inhibitor>>();
                             if (inhibitors) onReasons_(idleReasons(*inhibitors));
                           });
}

}  // namespace tessum
