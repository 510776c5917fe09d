// A private bus, and listeners on it.

#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "core/bus/bus.h"
#include "tests/support/bus/bus_linux.h"
#include "tests/support/environment.h"

namespace tessum {

inline constexpr char kPath[] = "/com/example";
inline constexpr char kInterface[] = "com.example.Interface";

class BusTest : public testing::Test {
 protected:
  // The notifications, in order.
  Bus::Listener noting() {
    return {.onConnected = [this] { told_ += 'c'; }, .onLost = [this] { told_ += 'l'; }};
  }

  [[nodiscard]] bool runUntilTold(const std::string& told) {
    return runUntil(loop_, [&] { return told_ == told; });
  }

  static BusCall callOf(const BusPeer& peer, const std::string& member,
                        std::vector<BusArgument> arguments = {}) {
    return {peer.uniqueName(), kPath, kInterface, member, std::move(arguments)};
  }

  static BusSignal signalOf(const BusPeer& peer, const std::string& member) {
    return {.sender = peer.uniqueName(), .path = kPath, .interface = kInterface, .member = member};
  }

  // Returns once the bus has received everything sent before.
  [[nodiscard]] bool sync(Bus& bus) {
    bool isAnswered = false;
    const BusSlot call = bus.call({kBusItself, kPath, kInterface, "None"},
                                  [&](const BusMessage&) { isAnswered = true; });
    return runUntil(loop_, [&] { return isAnswered; });
  }

  SystemMainLoop loop_;
  PrivateBus place_;
  ScopedVariable address_{"DBUS_SESSION_BUS_ADDRESS", place_.address().c_str()};
  std::string told_;
  const Bus::Timing quick_{
      .connectSeconds = 0.05, .firstRetrySeconds = 0.01, .longestRetrySeconds = 0.02};
};

}  // namespace tessum
