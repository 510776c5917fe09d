#include "core/presence/linux/power_transitions.h"

#include <utility>

#include "core/presence/linux/logind.h"

namespace tessum {

PowerTransitions::PowerTransitions(Bus& system, Handlers handlers)
    : system_(system),
      handlers_(std::move(handlers)),
      name_(system, logind::kName, [this](const std::string& owner) { start(owner); }) {}

void PowerTransitions::start(const std::string& owner) {
  owner_ = owner;
  inhibitorQuestion_ = nullptr;
  inhibitor_ = nullptr;
  if (owner.empty()) {
    for (Following& following : following_) {
      following.changes = nullptr;
      following.question = nullptr;
    }
    // If we see logind disappear, the computer is awake. The bus itself disappears in a shutdown,
    // though.
    set(sleep, false);
    return;
  }
  follow(sleep, "PrepareForSleep", "PreparingForSleep");
  follow(shutdown, "PrepareForShutdown", "PreparingForShutdown");
  takeInhibitor();
}

void PowerTransitions::follow(Transition transition, const char* signal, const char* property) {
  Following& following = following_[transition];
  following.changes = system_.subscribe(
      {.sender = owner_, .path = logind::kPath, .interface = logind::kManager, .member = signal},
      [this, transition](const BusMessage& message) {
        const auto isUnderWay = message.readOne<bool>();
        if (isUnderWay) set(transition, *isUnderWay);
      });
  following.question = system_.call(busProperty(owner_, logind::kPath, logind::kManager, property),
                                    [this, transition](const BusMessage& reply) {
                                      const auto isUnderWay = reply.readOne<BusVariant<bool>>();
                                      if (isUnderWay) set(transition, isUnderWay->value);
                                    });
}

void PowerTransitions::set(Transition transition, bool isUnderWay) {
  if (std::exchange(following_[transition].isUnderWay, isUnderWay) == isUnderWay) return;
  if (!isUnderWay) {
    // If it were kept longer than logind waits, it would delay the next sleep, too.
    if (const auto given = given_.lock()) static_cast<void>(given->close());
    takeInhibitor();
  }
  tell(transition, isUnderWay);
}

void PowerTransitions::tell(Transition transition, bool isUnderWay) {
  if (transition == sleep) {
    isUnderWay ? handlers_.onSleep(giveInhibitor()) : handlers_.onWake();
  } else {
    isUnderWay ? handlers_.onShutdown(giveInhibitor()) : handlers_.onShutdownGivenUp();
  }
}

void PowerTransitions::takeInhibitor() {
  if (inhibitor_ || owner_.empty()) return;
  inhibitorQuestion_ = system_.call(
      {owner_,
       logind::kPath,
       logind::kManager,
       "Inhibit",
       {"sleep:shutdown", "Tessum", "Ends the session before the computer sleeps", "delay"}},
      [this](const BusMessage& reply) {
        auto inhibitor = reply.readOne<Descriptor>();
        if (inhibitor) inhibitor_ = std::make_shared<Descriptor>(std::move(*inhibitor));
      });
}

PowerTransitions::Delay PowerTransitions::giveInhibitor() {
  if (inhibitor_) given_ = inhibitor_;
  return std::exchange(inhibitor_, nullptr);
}

}  // namespace tessum
