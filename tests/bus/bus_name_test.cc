#include "core/bus/bus_name.h"

#include <gtest/gtest.h>

#include "tests/support/bus/bus_linux.h"
#include "tests/support/environment.h"

namespace tessum {
namespace {

constexpr char kName[] = "com.example.Service";

class BusNameTest : public testing::Test {
 protected:
  BusNameTest() { place_.start(); }

  [[nodiscard]] bool runUntilOwners(std::size_t count) {
    return runUntil(loop_, [&] { return owners_.size() >= count; });
  }

  BusName::OwnerHandler note() {
    return [this](const std::string& owner) { owners_.push_back(owner); };
  }

  SystemMainLoop loop_;
  PrivateBus place_;
  ScopedVariable address_{"DBUS_SESSION_BUS_ADDRESS", place_.address().c_str()};
  std::vector<std::string> owners_;
  const Bus::Timing quick_{.firstRetrySeconds = 0.01, .longestRetrySeconds = 0.05};
};

TEST_F(BusNameTest, TellsWhoHasTheNameAlready) {
  BusPeer peer(loop_, place_.address());
  peer.takeName(kName);
  Bus bus(loop_, Bus::Kind::session);
  const BusName name(bus, kName, note());
  ASSERT_TRUE(runUntilOwners(1));
  EXPECT_EQ(owners_, std::vector{peer.uniqueName()});
}

TEST_F(BusNameTest, TellsWhoTakesItAndGivesItUp) {
  Bus bus(loop_, Bus::Kind::session);
  const BusName name(bus, kName, note());
  auto first = std::make_unique<BusPeer>(loop_, place_.address());
  BusPeer second(loop_, place_.address());
  const std::string firstName = first->uniqueName();
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));

  first->takeName(kName);
  ASSERT_TRUE(runUntilOwners(1));
  first->giveUpName(kName);
  ASSERT_TRUE(runUntilOwners(2));
  first->takeName(kName);
  ASSERT_TRUE(runUntilOwners(3));
  first.reset();
  ASSERT_TRUE(runUntilOwners(4));
  second.takeName(kName);
  ASSERT_TRUE(runUntilOwners(5));
  EXPECT_EQ(owners_, (std::vector<std::string>{firstName, "", firstName, "", second.uniqueName()}));
}

TEST_F(BusNameTest, NobodyHasItOnceTheBusIsLost) {
  auto peer = std::make_unique<BusPeer>(loop_, place_.address());
  peer->takeName(kName);
  Bus bus(loop_, Bus::Kind::session, quick_);
  const BusName name(bus, kName, note());
  ASSERT_TRUE(runUntilOwners(1));
  place_.stop();
  ASSERT_TRUE(runUntilOwners(2));
  EXPECT_EQ(owners_.back(), "");

  place_.start();
  peer = std::make_unique<BusPeer>(loop_, place_.address());
  peer->takeName(kName);
  ASSERT_TRUE(runUntilOwners(3));
  EXPECT_EQ(owners_.back(), peer->uniqueName());
}

TEST_F(BusNameTest, StartsNobody) {
  writeFile(place_.folder().file("example.service"), std::string("[D-BUS Service]\nName=") + kName +
                                                         "\nExec=/usr/bin/touch " +
                                                         place_.folder().file("started") + "\n");
  place_.start();
  Bus bus(loop_, Bus::Kind::session);
  const BusName name(bus, kName, note());
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
  bool isAnswered = false;
  const BusSlot call =
      bus.call({.destination = kName, .path = "/", .interface = "a.b", .member = "C"},
               [&](const BusMessage& reply) { isAnswered = reply.isError(); });
  ASSERT_TRUE(runUntil(loop_, [&] { return isAnswered; }));
  EXPECT_NE(access(place_.folder().file("started").c_str(), F_OK), 0);
  EXPECT_EQ(owners_, std::vector<std::string>{});
}

TEST_F(BusNameTest, BelievesTheBusAlone) {
  Bus bus(loop_, Bus::Kind::session);
  const BusName name(bus, kName, note());
  BusPeer liar(loop_, place_.address());
  BusPeer owner(loop_, place_.address());
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
  for (int i = 0; i < 10; ++i) {
    const std::string own = ":1." + std::to_string(i);
    liar.emitTo(own.c_str(), "/org/freedesktop/DBus", kBusItself, "NameOwnerChanged", "sss", kName,
                "", ":1.99");
  }
  liar.takeName("com.example.Liar");  // answered after the false signals were sent
  owner.takeName(kName);
  ASSERT_TRUE(runUntilOwners(1));
  EXPECT_EQ(owners_, std::vector{owner.uniqueName()});
}

}  // namespace
}  // namespace tessum
