// A logind that a test controls, on a private bus.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/platform/descriptor.h"
#include "tests/support/bus/bus_linux.h"

namespace tessum {

// Has one session, "7", which is the user's. Shares the test's loop.
class FakeLogind {
 public:
  static constexpr char kSession[] = "7";
  static constexpr char kSessionPath[] = "/org/freedesktop/login1/session/_37";

  struct Inhibitor {
    std::string what;
    std::string who;
    std::string why;
    std::string mode;
    std::uint32_t user;
  };

  // `address` is that of the bus. The program has its name when this returns.
  FakeLogind(SystemMainLoop& loop, const std::string& address);

  // The program on the bus, for what this class does not offer.
  [[nodiscard]] BusPeer& peer() { return peer_; }

  void takeName() { peer_.takeName("org.freedesktop.login1"); }
  void giveUpName() { peer_.giveUpName("org.freedesktop.login1"); }

  // Sets a property of the session or of logind, and announces the change.
  void changeSession(const std::string& property, BusArgument value);
  void changeManager(const std::string& property, const std::string& value);

  // Makes the session "active", "online" or "closing". As logind does, it tells of Active alone.
  void setState(const std::string& state);

  void emitFromSession(const std::string& member) {
    peer_.emit(kSessionPath, "org.freedesktop.login1.Session", member, "");
  }
  void emitOfSession(const std::string& member, const std::string& session,
                     const std::string& path) {
    peer_.emit("/org/freedesktop/login1", "org.freedesktop.login1.Manager", member, "so",
               session.c_str(), path.c_str());
  }

  // Announces the beginning or the end of a transition.
  void prepare(const std::string& member, bool isBeginning);

  // The inhibitors to list, besides those of the program under test.
  std::vector<Inhibitor> inhibitors;

  // Whether the program under test may inhibit anything.
  bool permitsInhibitors = true;

  // Whether the program under test has been told which session is its own. What is emitted after
  // that reaches it later.
  [[nodiscard]] bool hasToldSession() const { return hasToldSession_; }

  // The inhibitors that the program under test has asked for, and how many of them it still holds.
  [[nodiscard]] const std::vector<std::string>& requests() const { return requests_; }
  [[nodiscard]] int heldInhibitors() const;

 private:
  void answerInhibit(sd_bus_message* call);
  void answerList(sd_bus_message* call) const;

  BusPeer peer_;
  bool hasToldSession_ = false;
  std::vector<std::string> requests_;
  std::vector<Descriptor> readEnds_;  // of the pipes given to the program under test
};

}  // namespace tessum
