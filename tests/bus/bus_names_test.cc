#include "core/bus/bus_names.h"

#include "tests/bus/bus_fixture.h"

namespace tessum {
namespace {

TEST_F(BusTest, TheNamesOnItAreListed) {
  place_.start();
  BusPeer peer(loop_, place_.address());
  peer.takeName("com.example.Service");
  const auto names = namesOnBus(Bus::Kind::session);
  EXPECT_TRUE(names.contains("com.example.Service"));
  EXPECT_FALSE(names.contains("com.example.Other"));
}

TEST_F(BusTest, ThereAreNoNamesWithoutABus) {
  EXPECT_TRUE(namesOnBus(Bus::Kind::session).empty());
  address_.set("nonsense");
  EXPECT_TRUE(namesOnBus(Bus::Kind::session).empty());
  address_.set(nullptr);
  const ScopedVariable noFolder("XDG_RUNTIME_DIR", nullptr);
  EXPECT_TRUE(namesOnBus(Bus::Kind::session).empty());
}

TEST_F(BusTest, ASilentBusIsNotWaitedForLong) {
  place_.start();
  place_.daemon().kill(SIGSTOP);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(namesOnBus(Bus::Kind::session).empty());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

}  // namespace
}  // namespace tessum
