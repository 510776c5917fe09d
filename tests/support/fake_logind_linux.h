// logind as a test arranges it, on a bus of the test's own.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/platform/descriptor.h"
#include "tests/support/bus_linux.h"

namespace tessum {

// Knows the session "7" of the user. Shares the test's loop.
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

  // `address` is that of the bus. It has its name once this returns.
  FakeLogind(SystemMainLoop& loop, const std::string& address);

  // The program on the bus, for what is not here.
  [[nodiscard]] BusPeer& peer() { return peer_; }

  void takeName() { peer_.takeName("org.freedesktop.login1"); }
  void giveUpName() { peer_.giveUpName("org.freedesktop.login1"); }

  // Sets a property of the session or of logind, and tells of it.
  void changeSession(const std::string& property, bool value);
  void changeManager(const std::string& property, const std::string& value);

  void emitFromSession(const std::string& member) {
    peer_.emit(kSessionPath, "org.freedesktop.login1.Session", member, "");
  }
  void emitOfSession(const std::string& member, const std::string& session,
                     const std::string& path) {
    peer_.emit("/org/freedesktop/login1", "org.freedesktop.login1.Manager", member, "so",
               session.c_str(), path.c_str());
  }

  // Announces a transition, or that it is over.
  void prepare(const std::string& member, bool isBeginning);

  // What is listed as inhibited, besides what the program under test has asked for.
  std::vector<Inhibitor> inhibitors;

  // Whether the program under test may inhibit anything.
  bool permitsInhibitors = true;

  // What the program under test has asked to inhibit, and how many of these hold.
  [[nodiscard]] const std::vector<std::string>& requests() const { return requests_; }
  [[nodiscard]] int heldInhibitors() const;

 private:
  void answerInhibit(sd_bus_message* call);
  void answerList(sd_bus_message* call) const;

  BusPeer peer_;
  std::vector<std::string> requests_;
  std::vector<Descriptor> readEnds_;  // of the pipes whose other ends were handed out
};

}  // namespace tessum
