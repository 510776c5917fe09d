// The part of Core Foundation and IOKit that reports the lock and the computer's sleep, as plain
// C++ that a test controls. It follows their documentation as we understand it.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tessum::fake {

// One computer at a time.
class Power {
 public:
  static constexpr unsigned kCanSleep = 0xE0000270;
  static constexpr unsigned kWillSleep = 0xE0000280;
  static constexpr unsigned kHasPoweredOn = 0xE0000300;

  Power();
  ~Power();
  Power(const Power&) = delete;
  Power& operator=(const Power&) = delete;

  // Whether a program can register for power notifications.
  bool permitsRegistration = true;

  // Posts a notification to the observers of that name.
  void post(const std::string& name) const;

  // Notifies the registered program; `change` names what it has to allow.
  void send(unsigned message, std::intptr_t change) const;

  // What the program has allowed.
  [[nodiscard]] const std::vector<std::intptr_t>& allowed() const { return allowed_; }

  [[nodiscard]] std::size_t observers() const { return observers_.size(); }

  // Whether the program is registered, and the main run loop serves it.
  [[nodiscard]] bool isRegistered() const { return callback_ != nullptr && isInRunLoop_; }

  // Whether the connection over which it allows changes is open.
  [[nodiscard]] bool isOpen() const { return isOpen_; }

 private:
  using NotificationCallback = void (*)(void* center, void* observer, const void* name,
                                        const void* object, const void* userInfo);
  using PowerCallback = void (*)(void* self, unsigned service, unsigned message, void* argument);

  struct Observer {
    const void* observer;
    std::string name;
    NotificationCallback callback;
  };

  static Power& current();

  std::vector<Observer> observers_;
  std::vector<std::intptr_t> allowed_;
  PowerCallback callback_ = nullptr;
  void* self_ = nullptr;
  bool isInRunLoop_ = false;
  bool isOpen_ = false;

  friend struct PowerCalls;
};

}  // namespace tessum::fake
