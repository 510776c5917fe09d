// Buses that are missing, slow, silent or restarted.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <csignal>

#include "core/platform/descriptor.h"
#include "tests/bus/bus_fixture.h"

namespace tessum {
namespace {

using BusConnectionTest = BusTest;

// A socket at a bus's address that never answers.
class SilentBus {
 public:
  explicit SilentBus(const std::string& path)
      : listener_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    name_.sun_family = AF_UNIX;
    path.copy(name_.sun_path, sizeof name_.sun_path - 1);
    EXPECT_EQ(bind(listener_.number(), address(), sizeof name_), 0);
    EXPECT_EQ(listen(listener_.number(), 0), 0);
  }

  // Accepts a connection, if there is one.
  bool accept() {
    Descriptor taken(accept4(listener_.number(), nullptr, nullptr, SOCK_CLOEXEC));
    if (taken.number() < 0) return false;
    taken_.push_back(std::move(taken));
    return true;
  }

  [[nodiscard]] std::size_t count() const { return taken_.size(); }

  // Connects to it; without a descriptor when its queue is full.
  [[nodiscard]] Descriptor connect() const {
    Descriptor client(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (::connect(client.number(), address(), sizeof name_) != 0) return Descriptor();
    return client;
  }

  void remove() { EXPECT_EQ(unlink(name_.sun_path), 0); }

 private:
  [[nodiscard]] const sockaddr* address() const {
    return reinterpret_cast<const sockaddr*>(&name_);
  }

  sockaddr_un name_{};
  Descriptor listener_;
  std::vector<Descriptor> taken_;
};

TEST_F(BusConnectionTest, PicksUpABusThatComesLater) {
  Bus bus(loop_, Bus::Kind::session, quick_);
  bus.addListener(noting());
  int turns = 0;
  ASSERT_TRUE(runUntil(loop_, [&] { return ++turns > 50; }));
  EXPECT_EQ(told_, "");
  EXPECT_EQ(bus.call({kBusItself, kPath, kInterface, "Any"}, nullptr), nullptr);
  EXPECT_EQ(bus.subscribe({.sender = kBusItself}, nullptr), nullptr);
  place_.start();
  EXPECT_TRUE(runUntilTold("c"));
}

TEST_F(BusConnectionTest, PicksUpABusThatIsRestarted) {
  place_.start();
  Bus bus(loop_, Bus::Kind::session, quick_);
  const auto removed = bus.addListener({.onConnected = [] { FAIL(); }, .onLost = [] { FAIL(); }});
  bus.addListener(noting());
  bus.removeListener(removed);
  ASSERT_TRUE(runUntilTold("c"));
  BusPeer peer(loop_, place_.address());
  peer.answer(kPath, kInterface, "Hang", [](sd_bus_message*) {});
  const BusSlot call =
      bus.call(callOf(peer, "Hang"), [](const BusMessage&) { FAIL() << "the connection is lost"; });
  ASSERT_TRUE(runUntil(loop_, [&] { return !peer.calls.empty(); }));
  place_.stop();
  ASSERT_TRUE(runUntilTold("cl"));
  EXPECT_FALSE(bus.isConnected());
  place_.start();
  EXPECT_TRUE(runUntilTold("clc"));
}

TEST_F(BusConnectionTest, GivesUpABusThatNeverAnswers) {
  SilentBus silent(place_.folder().file("bus"));
  Bus bus(loop_, Bus::Kind::session, quick_);
  bus.addListener(noting());
  ASSERT_TRUE(runUntil(loop_, [&] { return silent.accept() && silent.count() >= 5; }));
  EXPECT_EQ(told_, "");
  silent.remove();
  place_.start();
  EXPECT_TRUE(runUntilTold("c"));
}

TEST_F(BusConnectionTest, TriesLessAndLessOften) {
  SilentBus silent(place_.folder().file("bus"));
  std::vector<double> times;
  const auto start = std::chrono::steady_clock::now();
  Bus bus(loop_, Bus::Kind::session,
          {.connectSeconds = 0.01, .firstRetrySeconds = 0.02, .longestRetrySeconds = 0.08});
  ASSERT_TRUE(runUntil(loop_, [&] {
    const std::chrono::duration<double> sinceStart = std::chrono::steady_clock::now() - start;
    if (silent.accept()) times.push_back(sinceStart.count());
    return times.size() == 6;
  }));
  double earliest = 0;
  const double waits[] = {0, 0.02, 0.04, 0.08, 0.08, 0.08};
  for (std::size_t i = 0; i < times.size(); ++i) {
    earliest += waits[i] + (i > 0 ? 0.01 : 0);
    EXPECT_GE(times[i], earliest) << "attempt " << i;
  }
}

TEST_F(BusConnectionTest, IsNotHeldUpByABusThatTakesNoConnection) {
  const SilentBus silent(place_.folder().file("bus"));
  const Descriptor others[] = {silent.connect(), silent.connect(), silent.connect()};
  ASSERT_EQ(others[2].number(), -1) << "the queue is not full";
  Bus bus(loop_, Bus::Kind::session, quick_);
  int turns = 0;
  EXPECT_TRUE(runUntil(loop_, [&] { return ++turns > 50; }));
  EXPECT_FALSE(bus.isConnected());
}

TEST_F(BusConnectionTest, WaitsForABusThatHangsAndGoesOn) {
  place_.start();
  Bus bus(loop_, Bus::Kind::session);
  bus.addListener(noting());
  ASSERT_TRUE(runUntilTold("c"));
  BusPeer peer(loop_, place_.address());
  peer.answer(kPath, kInterface, "Get",
              [](sd_bus_message* call) { sd_bus_reply_method_return(call, ""); });
  const BusCall toPeer = callOf(peer, "Get");
  place_.daemon().kill(SIGSTOP);
  bool isAnswered = false;
  const BusSlot call = bus.call(toPeer, [&](const BusMessage&) { isAnswered = true; });
  std::vector<BusSlot> more;  // more than the socket's buffer holds
  for (int i = 0; i < 5000; ++i) {
    more.push_back(bus.call({peer.uniqueName(), kPath, kInterface, "None", {std::string(500, 'x')}},
                            [](const BusMessage&) {}));
    ASSERT_NE(more.back(), nullptr);
  }
  EXPECT_FALSE(isAnswered);
  place_.daemon().kill(SIGCONT);
  EXPECT_TRUE(runUntil(loop_, [&] { return isAnswered; }));
  EXPECT_EQ(told_, "c");
}

TEST_F(BusConnectionTest, LeavesABusThatRefusesASubscription) {
  PrivateBus refusing("<limit name='max_match_rules_per_connection'>1</limit>");
  refusing.start();
  address_.set(refusing.address().c_str());
  Bus bus(loop_, Bus::Kind::session, quick_);
  bus.addListener(noting());
  ASSERT_TRUE(runUntilTold("c"));
  const BusSlot first = bus.subscribe({.sender = kBusItself, .member = "A"}, nullptr);
  const BusSlot second = bus.subscribe({.sender = kBusItself, .member = "B"}, nullptr);
  EXPECT_TRUE(runUntilTold("clc"));
}

TEST_F(BusConnectionTest, ToleratesAnAddressThatIsNone) {
  const ScopedVariable noFolder("XDG_RUNTIME_DIR", nullptr);
  for (const char* address : {static_cast<const char*>(nullptr), "", "nonsense",
                              "unix:", "unix:path=/dev/null", ":;=,", "tcp:port=x"}) {
    address_.set(address);
    Bus bus(loop_, Bus::Kind::session, quick_);
    int turns = 0;
    EXPECT_TRUE(runUntil(loop_, [&] { return ++turns > 50; }));
    EXPECT_FALSE(bus.isConnected());
  }
}

TEST_F(BusConnectionTest, FindsTheBusOfTheComputer) {
  place_.start();
  const ScopedVariable system("DBUS_SYSTEM_BUS_ADDRESS", place_.address().c_str());
  address_.set("unix:path=/nowhere");
  Bus bus(loop_, Bus::Kind::system);
  EXPECT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
}

}  // namespace
}  // namespace tessum
