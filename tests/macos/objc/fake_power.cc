#include "tests/macos/objc/fake_power.h"

#include "core/base/check.h"
#include "tests/macos/objc/fake_runtime.h"

namespace tessum::fake {
namespace {

Power* thePower = nullptr;

constexpr unsigned kRootPort = 11;
constexpr unsigned kNotifier = 12;
int theDistributedCenter;
int theRunLoop;
int theNotificationPort;
int theSource;

}  // namespace

Power::Power() {
  TESSUM_CHECK(thePower == nullptr, "two computers at once");
  thePower = this;
}

Power::~Power() {
  thePower = nullptr;
}

Power& Power::current() {
  TESSUM_CHECK(thePower != nullptr, "there is no computer");
  return *thePower;
}

void Power::post(const std::string& name) const {
  for (const Observer& observer : std::vector(observers_)) {
    if (observer.name != name) continue;
    observer.callback(&theDistributedCenter, const_cast<void*>(observer.observer), nullptr, nullptr,
                      nullptr);
  }
}

void Power::send(unsigned message, std::intptr_t change) const {
  TESSUM_CHECK(isRegistered(), "nobody is registered");
  callback_(self_, 0, message, reinterpret_cast<void*>(change));
}

// What the functions below do with the computer.
struct PowerCalls {
  static void addObserver(const void* observer, Power::NotificationCallback callback,
                          std::string name) {
    Power::current().observers_.push_back({observer, std::move(name), callback});
  }

  static void removeObserver(const void* observer) {
    std::erase_if(Power::current().observers_,
                  [&](const Power::Observer& each) { return each.observer == observer; });
  }

  static unsigned registerForPower(void* self, Power::PowerCallback callback) {
    Power& power = Power::current();
    if (!power.permitsRegistration) return 0;
    TESSUM_CHECK(power.callback_ == nullptr, "registered twice");
    power.callback_ = callback;
    power.self_ = self;
    power.isOpen_ = true;
    return kRootPort;
  }

  static void deregister() {
    TESSUM_CHECK(Power::current().callback_ != nullptr, "not registered");
    Power::current().callback_ = nullptr;
  }

  static void setInRunLoop(bool isInRunLoop) { Power::current().isInRunLoop_ = isInRunLoop; }

  static void allow(std::intptr_t change) {
    TESSUM_CHECK(Power::current().isOpen_, "allowed over a closed connection");
    Power::current().allowed_.push_back(change);
  }

  static void close() {
    TESSUM_CHECK(Power::current().isOpen_, "closed twice");
    Power::current().isOpen_ = false;
  }
};

// The constants and C functions that the source names --------------------------------------------

extern "C" {

extern const void* const kCFRunLoopDefaultMode;
const void* const kCFRunLoopDefaultMode = &theRunLoop;

void* CFNotificationCenterGetDistributedCenter() {
  return &theDistributedCenter;
}

void CFNotificationCenterAddObserver(void* center, const void* observer,
                                     void (*callback)(void*, void*, const void*, const void*,
                                                      const void*),
                                     const ConstantString* name, const void* object,
                                     long suspensionBehavior) {
  constexpr long kDeliverImmediately = 4;
  TESSUM_CHECK(center == &theDistributedCenter && object == nullptr, "another centre or object");
  TESSUM_CHECK(suspensionBehavior == kDeliverImmediately, "it comes late");
  PowerCalls::addObserver(observer, callback, name->text);
}

void CFNotificationCenterRemoveEveryObserver(void* center, const void* observer) {
  TESSUM_CHECK(center == &theDistributedCenter, "another centre");
  PowerCalls::removeObserver(observer);
}

void* CFRunLoopGetMain() {
  return &theRunLoop;
}

void CFRunLoopAddSource(void* loop, void* source, const void* mode) {
  TESSUM_CHECK(loop == &theRunLoop && source == &theSource && mode == kCFRunLoopDefaultMode,
               "another loop, source or mode");
  PowerCalls::setInRunLoop(true);
}

void CFRunLoopRemoveSource(void* loop, void* source, const void* mode) {
  TESSUM_CHECK(loop == &theRunLoop && source == &theSource && mode == kCFRunLoopDefaultMode,
               "another loop, source or mode");
  PowerCalls::setInRunLoop(false);
}

unsigned IORegisterForSystemPower(void* self, void** port,
                                  void (*callback)(void*, unsigned, unsigned, void*),
                                  unsigned* notifier) {
  *port = &theNotificationPort;
  *notifier = kNotifier;
  return PowerCalls::registerForPower(self, callback);
}

int IODeregisterForSystemPower(unsigned* notifier) {
  TESSUM_CHECK(*notifier == kNotifier, "another notifier");
  PowerCalls::deregister();
  return 0;
}

int IOAllowPowerChange(unsigned port, std::intptr_t change) {
  TESSUM_CHECK(port == kRootPort, "another connection");
  PowerCalls::allow(change);
  return 0;
}

void* IONotificationPortGetRunLoopSource(void* port) {
  TESSUM_CHECK(port == &theNotificationPort, "another port");
  return &theSource;
}

void IONotificationPortDestroy(void* port) {
  TESSUM_CHECK(port == &theNotificationPort, "another port");
}

int IOServiceClose(unsigned port) {
  TESSUM_CHECK(port == kRootPort, "another connection");
  PowerCalls::close();
  return 0;
}

}  // extern "C"

}  // namespace tessum::fake
