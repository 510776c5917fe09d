// A user who comes and goes as a test decides.

#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "core/presence/presence_source.h"

namespace tessum {

// Passes each call to the handlers, if any, with the time of the clock.
class FakePresence final : public PresenceSource {
 public:
  explicit FakePresence(const SteadyClock& clock) : clock_(clock) {}

  void watch(PresenceHandlers handlers) override { handlers_ = std::move(handlers); }

  void lock() { tell(handlers_.onLock, true, clock_.now()); }
  void unlock() { tell(handlers_.onLock, false, clock_.now()); }
  void sleep() { tell(handlers_.onSleep, clock_.now(), newDelay()); }
  void endSession() { tell(handlers_.onSessionEnd, clock_.now(), newDelay()); }
  void wake() { tell(handlers_.onWake, clock_.now()); }
  void keepAwake(const std::vector<AwakeReason>& reasons) {
    tell(handlers_.onKeptAwake, reasons, clock_.now());
  }

  // Whether anything still delays the sleep or the end that was announced last.
  [[nodiscard]] bool isHeldBack() const { return !delay_.expired(); }

 private:
  template <typename Handler, typename... Arguments>
  static void tell(const Handler& handler, Arguments&&... arguments) {
    if (handler) handler(std::forward<Arguments>(arguments)...);
  }

  PresenceHandlers::Delay newDelay() {
    auto delay = std::make_shared<int>();
    delay_ = delay;
    return delay;
  }

  const SteadyClock& clock_;
  PresenceHandlers handlers_;
  std::weak_ptr<void> delay_;
};

}  // namespace tessum
