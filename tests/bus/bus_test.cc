#include "core/bus/bus.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/bus/bus_fixture.h"

namespace tessum {
namespace {

TEST_F(BusTest, CallsWithTypedArguments) {
  place_.start();
  Bus bus(loop_, Bus::Kind::session);
  BusPeer peer(loop_, place_.address());
  peer.answer(kPath, kInterface, "Echo", [](sd_bus_message* call) {
    int flag = 0;
    std::uint32_t number = 0;
    const char* text = nullptr;
    sd_bus_message_read(call, "bus", &flag, &number, &text);
    sd_bus_reply_method_return(call, "sub", text, number, flag);
  });
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
  std::optional<std::tuple<std::string, std::uint32_t, bool>> answer;
  const BusSlot call = bus.call(
      callOf(peer, "Echo", {true, UINT32_MAX, "Zürich"}),
      [&](const BusMessage& reply) { answer = reply.read<std::string, std::uint32_t, bool>(); });
  ASSERT_TRUE(runUntil(loop_, [&] { return answer.has_value(); }));
  EXPECT_EQ(*answer, std::tuple("Zürich", UINT32_MAX, true));
}

TEST_F(BusTest, ReadsProperties) {
  place_.start();
  Bus bus(loop_, Bus::Kind::session);
  BusPeer peer(loop_, place_.address());
  peer.setProperty(kPath, kInterface, "Flag", true);
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
  int answers = 0;
  const BusSlot good = bus.call(busProperty(peer.uniqueName(), kPath, kInterface, "Flag"),
                                [&](const BusMessage& reply) {
                                  ++answers;
                                  EXPECT_EQ(reply.readOne<BusVariant<bool>>()->value, true);
                                });
  const BusSlot bad = bus.call(busProperty(peer.uniqueName(), kPath, kInterface, "Other"),
                               [&](const BusMessage& reply) {
                                 ++answers;
                                 EXPECT_TRUE(reply.isError());
                                 EXPECT_FALSE(reply.read<>());
                               });
  ASSERT_TRUE(runUntil(loop_, [&] { return answers == 2; }));
}

TEST_F(BusTest, ACallFailsWhenTheProgramEndsWithoutAnAnswer) {
  place_.start();
  Bus bus(loop_, Bus::Kind::session);
  auto peer = std::make_unique<BusPeer>(loop_, place_.address());
  peer->answer(kPath, kInterface, "Hang", [](sd_bus_message*) {});
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
  bool hasFailed = false;
  const BusSlot call = bus.call(callOf(*peer, "Hang"),
                                [&](const BusMessage& reply) { hasFailed = reply.isError(); });
  ASSERT_TRUE(runUntil(loop_, [&] { return !peer->calls.empty(); }));
  EXPECT_FALSE(hasFailed);
  peer.reset();
  EXPECT_TRUE(runUntil(loop_, [&] { return hasFailed; }));
}

TEST_F(BusTest, TellsOfTheSignalsThatWereSubscribed) {
  place_.start();
  Bus bus(loop_, Bus::Kind::session);
  BusPeer peer(loop_, place_.address());
  BusPeer other(loop_, place_.address());
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
  std::vector<std::string> texts;
  const auto note = [&](const BusMessage& signal) {
    texts.push_back(signal.readOne<std::string>().value_or("another type"));
  };
  const BusSlot slot = bus.subscribe(signalOf(peer, "Changed"), note);
  ASSERT_TRUE(sync(bus));

  other.emit(kPath, kInterface, "Changed", "s", "of another program");
  peer.emit("/elsewhere", kInterface, "Changed", "s", "of another object");
  peer.emit(kPath, "com.example.Other", "Changed", "s", "of another interface");
  peer.emit(kPath, kInterface, "Other", "s", "another");
  peer.emit(kPath, kInterface, "Changed", "u", 1);
  peer.emit(kPath, kInterface, "Changed", "s", "last");
  ASSERT_TRUE(runUntil(loop_, [&] { return texts.size() >= 2; }));
  EXPECT_EQ(texts, (std::vector<std::string>{"another type", "last"}));
}

TEST_F(BusTest, ADroppedSlotIsSilentAlsoInItsOwnHandler) {
  place_.start();
  Bus bus(loop_, Bus::Kind::session);
  BusPeer peer(loop_, place_.address());
  peer.answer(kPath, kInterface, "Get",
              [](sd_bus_message* call) { sd_bus_reply_method_return(call, ""); });
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
  int signals = 0;
  BusSlot slot = bus.subscribe(signalOf(peer, "Changed"),
                               [&, alive = std::make_shared<int>(7)](const BusMessage&) {
                                 slot = nullptr;
                                 ++signals;
                                 EXPECT_EQ(*alive, 7) << "the handler goes after it has run";
                               });
  BusSlot dropped = bus.call(callOf(peer, "Get"), [](const BusMessage&) { FAIL() << "dropped"; });
  dropped = nullptr;
  ASSERT_TRUE(sync(bus));
  for (int i = 0; i < 3; ++i) peer.emit(kPath, kInterface, "Changed", "");
  ASSERT_TRUE(runUntil(loop_, [&] { return signals > 0; }));
  ASSERT_TRUE(sync(bus));
  EXPECT_EQ(signals, 1);
}

TEST_F(BusTest, ManyMessagesLeaveTimeForTheRestOfTheProgram) {
  place_.start();
  Bus bus(loop_, Bus::Kind::session);
  BusPeer peer(loop_, place_.address());
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
  int signals = 0;
  int signalsBeforeTask = 0;
  const BusSlot slot = bus.subscribe(signalOf(peer, "Changed"), [&](const BusMessage&) {
    if (++signals == 1) loop_.post([&] { signalsBeforeTask = signals; });
  });
  ASSERT_TRUE(sync(bus));
  for (int i = 0; i < 500; ++i) peer.emit(kPath, kInterface, "Changed", "");
  peer.takeName("com.example.Name");  // answered after all signals were sent
  EXPECT_TRUE(runUntil(loop_, [&] { return signals == 500; }));
  EXPECT_GE(signalsBeforeTask, 1);
  EXPECT_LE(signalsBeforeTask, 100);
}

// It accepts connections and stays silent; later a real bus replaces it. Nobody accepts the
// connections, so the system's queue soon fills up.
TEST_F(BusTest, WhatAHandlerThrowsLeavesTheLoop) {
  place_.start();
  Bus bus(loop_, Bus::Kind::session);
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
  const BusSlot call = bus.call({kBusItself, kPath, kInterface, "None"},
                                [](const BusMessage&) { throw std::runtime_error("thrown"); });
  EXPECT_THROW(loop_.run(), std::runtime_error);
  EXPECT_TRUE(sync(bus));
}

using BusDeathTest = BusTest;

TEST_F(BusDeathTest, AHandlerMustNotDestroyIt) {
  place_.start();
  const auto scenario = [&] {
    auto bus = std::make_unique<Bus>(loop_, Bus::Kind::session);
    bus->addListener({.onConnected = [&] { bus.reset(); }});
    static_cast<void>(runUntil(loop_, [] { return false; }));
  };
  EXPECT_DEATH(scenario(), "a handler of a bus destroys it");
}

}  // namespace
}  // namespace tessum
