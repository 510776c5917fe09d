// The system announces the lock to all programs of the session by a named notification. It
// announces sleep to the programs that have registered for it, and sleeps once each has allowed it,
// at most 30 seconds later.

#include "core/presence/system_presence.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <IOKit/IOMessage.h>
#include <IOKit/pwr_mgt/IOPMLib.h>

#include <cstdint>
#include <utility>

namespace tessum {
namespace {

// The connection over which a sleep is allowed.
class RootPort {
 public:
  explicit RootPort(io_connect_t port) : port_(port) {}
  ~RootPort() { IOServiceClose(port_); }
  RootPort(const RootPort&) = delete;
  RootPort& operator=(const RootPort&) = delete;

  void allow(std::intptr_t change) const { IOAllowPowerChange(port_, change); }

 private:
  const io_connect_t port_;
};

// Allows a sleep when it is destroyed.
class SleepDelay {
 public:
  SleepDelay(std::shared_ptr<const RootPort> rootPort, std::intptr_t change)
      : rootPort_(std::move(rootPort)), change_(change) {}
  ~SleepDelay() { rootPort_->allow(change_); }
  SleepDelay(const SleepDelay&) = delete;
  SleepDelay& operator=(const SleepDelay&) = delete;

 private:
  const std::shared_ptr<const RootPort> rootPort_;
  const std::intptr_t change_;
};

class MacPresence final : public PresenceSource {
 public:
  explicit MacPresence(const SteadyClock& clock) : clock_(clock) {}
  ~MacPresence() override { stop(); }

  void watch(PresenceHandlers handlers) override {
    stop();
    handlers_ = std::move(handlers);
    isLocked_ = false;
    isAsleep_ = false;
    watchLock();
    watchPower();
  }

 private:
  void watchLock() {
    const auto observe = [this](CFStringRef name, CFNotificationCallback callback) {
      CFNotificationCenterAddObserver(CFNotificationCenterGetDistributedCenter(), this, callback,
                                      name, nullptr,
                                      CFNotificationSuspensionBehaviorDeliverImmediately);
    };
    observe(CFSTR("com.apple.screenIsLocked"),
            [](CFNotificationCenterRef, void* self, CFNotificationName, const void*,
               CFDictionaryRef) { static_cast<MacPresence*>(self)->setLocked(true); });
    observe(CFSTR("com.apple.screenIsUnlocked"),
            [](CFNotificationCenterRef, void* self, CFNotificationName, const void*,
               CFDictionaryRef) { static_cast<MacPresence*>(self)->setLocked(false); });
  }

  void watchPower() {
    const io_connect_t port = IORegisterForSystemPower(
        this, &notifications_,
        [](void* self, io_service_t, natural_t message, void* argument) {
          static_cast<MacPresence*>(self)->handlePower(message,
                                                       reinterpret_cast<std::intptr_t>(argument));
        },
        &notifier_);
    if (port == 0) return;
    rootPort_ = std::make_shared<const RootPort>(port);
    CFRunLoopAddSource(CFRunLoopGetMain(), IONotificationPortGetRunLoopSource(notifications_),
                       kCFRunLoopDefaultMode);
  }

  // A delay that is still held keeps the connection open.
  void stop() {
    CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetDistributedCenter(), this);
    if (!rootPort_) return;
    CFRunLoopRemoveSource(CFRunLoopGetMain(), IONotificationPortGetRunLoopSource(notifications_),
                          kCFRunLoopDefaultMode);
    IODeregisterForSystemPower(&notifier_);
    rootPort_ = nullptr;
    IONotificationPortDestroy(notifications_);
  }

  void setLocked(bool isLocked) {
    if (std::exchange(isLocked_, isLocked) == isLocked || !handlers_.onLock) return;
    handlers_.onLock(isLocked, clock_.now());
  }

  void handlePower(natural_t message, std::intptr_t change) {
    switch (message) {
      case kIOMessageCanSystemSleep:  // it asks for objections
        rootPort_->allow(change);
        return;
      case kIOMessageSystemWillSleep: {
        auto delay = std::make_shared<SleepDelay>(rootPort_, change);
        isAsleep_ = true;
        if (handlers_.onSleep) handlers_.onSleep(clock_.now(), std::move(delay));
        return;
      }
      case kIOMessageSystemHasPoweredOn:
        if (std::exchange(isAsleep_, false) && handlers_.onWake) handlers_.onWake(clock_.now());
        return;
      default:
        return;
    }
  }

  const SteadyClock& clock_;
  PresenceHandlers handlers_;
  bool isLocked_ = false;
  bool isAsleep_ = false;
  std::shared_ptr<const RootPort> rootPort_;  // null while sleep is not watched
  IONotificationPortRef notifications_ = nullptr;
  io_object_t notifier_ = 0;
};

}  // namespace

// The main dispatch queue and run loop that drive it belong to the loop.
std::unique_ptr<PresenceSource> openSystemPresence(SystemMainLoop&, const SteadyClock& clock) {
  return std::make_unique<MacPresence>(clock);
}

}  // namespace tessum
