// A private message bus for a test, and programs on it.

#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/bus/bus.h"
#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

// Runs the loop until `isDone` holds. False if that takes longer than a minute.
[[nodiscard]] bool runUntil(SystemMainLoop& loop, const std::function<bool()>& isDone);

// The address of a bus, at which the test starts and stops a real dbus-daemon.
class PrivateBus {
 public:
  // Any program may take any name and talk to any other. `limits` is further configuration.
  explicit PrivateBus(const std::string& limits = "");

  // The value for DBUS_SESSION_BUS_ADDRESS and DBUS_SYSTEM_BUS_ADDRESS.
  [[nodiscard]] const std::string& address() const { return address_; }

  // The folder of the programs that the bus may start.
  [[nodiscard]] const TemporaryFolder& folder() const { return folder_; }

  void start();
  void stop() { daemon_.reset(); }
  [[nodiscard]] ChildProcess& daemon() { return *daemon_; }

 private:
  TemporaryFolder folder_;
  const std::string address_;
  std::unique_ptr<ChildProcess> daemon_;
};

// A program on the bus that is part of the test and shares its loop. Its own calls wait for the
// answer and throw std::runtime_error when they fail.
class BusPeer {
 public:
  // Answers a call through sd_bus_reply_method_return() or a relative, or leaves the caller without
  // an answer.
  using Answer = std::function<void(sd_bus_message* call)>;

  BusPeer(SystemMainLoop& loop, const std::string& address);
  ~BusPeer();
  BusPeer(const BusPeer&) = delete;
  BusPeer& operator=(const BusPeer&) = delete;

  void takeName(const std::string& name);
  void giveUpName(const std::string& name);
  [[nodiscard]] std::string uniqueName() const;

  // Answers calls of that method at that path. Other calls get an error.
  void answer(const std::string& path, const std::string& interface, const std::string& member,
              Answer answer);

  // Sets a property of an object.
  void setProperty(const std::string& path, const std::string& interface,
                   const std::string& property, BusArgument value);

  // The same, and announces the change.
  void changeProperty(const std::string& path, const std::string& interface,
                      const std::string& property, BusArgument value);

  // Sends a signal with values of `types` to the program named `destination`, or to all if that is
  // null.
  template <typename... Values>
  void emitTo(const char* destination, const std::string& path, const std::string& interface,
              const std::string& member, const char* types, Values... values) {
    sd_bus_message* signal = nullptr;
    expect(
        sd_bus_message_new_signal(bus_, &signal, path.c_str(), interface.c_str(), member.c_str()));
    expect(sd_bus_message_append(signal, types, values...));
    expect(sd_bus_send_to(bus_, signal, destination, nullptr));
    sd_bus_message_unref(signal);
  }
  template <typename... Values>
  void emit(const std::string& path, const std::string& interface, const std::string& member,
            const char* types, Values... values) {
    emitTo(nullptr, path, interface, member, types, values...);
  }

  // The calls received, as "member path".
  std::vector<std::string> calls;

 private:
  static void expect(int result) {
    if (result < 0) throw std::runtime_error("a call of the bus's library failed");
  }
  static int onMessage(sd_bus_message* message, void* self, sd_bus_error*);
  [[nodiscard]] bool answer(sd_bus_message* call);
  void answerProperty(sd_bus_message* call);

  SystemMainLoop& loop_;
  MainLoop::TimerToken timer_{};
  sd_bus* bus_ = nullptr;
  std::map<std::string, Answer> answers_;
  std::map<std::string, BusArgument> properties_;
};

}  // namespace tessum
