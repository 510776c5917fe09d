#include "tests/bus/bus_fixture.h"

namespace tessum {
namespace {

TEST_F(BusTest, AnOfferedMethodMayBeCalledByOneProgram) {
  place_.start();
  Bus bus(loop_, Bus::Kind::session);
  ASSERT_TRUE(runUntil(loop_, [&] { return bus.isConnected(); }));
  Bus caller(loop_, Bus::Kind::session);
  Bus other(loop_, Bus::Kind::session);
  ASSERT_TRUE(runUntil(loop_, [&] { return caller.isConnected() && other.isConnected(); }));
  std::vector<std::string> received;
  BusSlot offer =
      bus.offer({caller.uniqueName(), kPath, kInterface, "Show"}, [&](const BusMessage& call) {
        received.push_back(call.readOne<std::string>().value_or("?"));
      });

  // Calls it, and says whether that has succeeded.
  const auto succeeds = [&](Bus& from, const std::string& member) {
    std::optional<bool> isError;
    const BusSlot call =
        from.call({bus.uniqueName(), kPath, kInterface, member, {std::string("text")}},
                  [&](const BusMessage& reply) { isError = reply.isError(); });
    EXPECT_TRUE(runUntil(loop_, [&] { return isError.has_value(); }));
    return !*isError;
  };
  EXPECT_TRUE(succeeds(caller, "Show"));
  EXPECT_FALSE(succeeds(caller, "Other"));
  EXPECT_FALSE(succeeds(other, "Show"));
  EXPECT_EQ(received, std::vector<std::string>{"text"});
  offer = nullptr;
  EXPECT_FALSE(succeeds(caller, "Show"));
}

}  // namespace
}  // namespace tessum
