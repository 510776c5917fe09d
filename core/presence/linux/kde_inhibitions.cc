// The list holds every inhibition, such as a download that inhibits sleep, and does not say which
// ones concern the screen. So we first ask whether any does.

#include "core/presence/linux/kde_inhibitions.h"

#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

namespace tessum {
namespace {

constexpr char kAgentName[] = "org.kde.Solid.PowerManagement.PolicyAgent";
constexpr char kAgentPath[] = "/org/kde/Solid/PowerManagement/PolicyAgent";
constexpr char kAgent[] = "org.kde.Solid.PowerManagement.PolicyAgent";

constexpr std::uint32_t kOfTheScreen = 4;  // one of the kinds of inhibition

}  // namespace

KdeInhibitions::KdeInhibitions(Bus& session, AwakeReasonsHandler onReasons)
    : session_(session),
      onReasons_(std::move(onReasons)),
      name_(session, kAgentName, [this](const std::string& owner) { start(owner); }) {}

void KdeInhibitions::start(const std::string& owner) {
  owner_ = owner;
  changes_ = nullptr;
  question_ = nullptr;
  if (owner.empty()) return onReasons_({});
  changes_ = session_.subscribe(
      {.sender = owner, .path = kAgentPath, .interface = kAgent, .member = "InhibitionsChanged"},
      [this](const BusMessage&) { ask(); });
  ask();
}

void KdeInhibitions::ask() {
  question_ = session_.call({owner_, kAgentPath, kAgent, "HasInhibition", {kOfTheScreen}},
                            [this](const BusMessage& reply) {
                              const auto isKeptOn = reply.readOne<bool>();
                              if (!isKeptOn) return;
                              *isKeptOn ? askForList() : onReasons_({});
                            });
}

void KdeInhibitions::askForList() {
  question_ = session_.call(
      {owner_, kAgentPath, kAgent, "ListInhibitions"}, [this](const BusMessage& reply) {
        const auto list = reply.readOne<std::vector<std::tuple<std::string, std::string>>>();
        if (!list) return;
        std::vector<AwakeReason> reasons;
        for (const auto& [who, why] : *list) reasons.push_back({who, why});
        onReasons_(std::move(reasons));
      });
}

}  // namespace tessum
