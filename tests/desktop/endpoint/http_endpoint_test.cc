#include "desktop/endpoint/http_endpoint.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "desktop/endpoint/admission.h"
#include "tests/http/loopback.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

class HTTPEndpointTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
  const std::string path_ = folder_.file("activities.db");
  const std::uint16_t port_ = freePort();
  const SystemClock clock_{};
  const SystemCalendar calendar_{};

  // Whether the engine answers a request to `host` and the port.
  [[nodiscard]] bool isAnswered(const std::string& host) const {
    const std::string ping = R"({"jsonrpc":"2.0","id":1,"method":"ping"})";
    const std::string request =
        "POST /mcp HTTP/1.1\r\nHost: " + host + ":" + std::to_string(port_) +
        "\r\nContent-Length: " + std::to_string(ping.size()) + "\r\n\r\n" + ping;
    return ask(port_, request).find("Method not found: ping") != std::string::npos;
  }
};

TEST_F(HTTPEndpointTest, IsOpenFromItsMakingToItsEnd) {
  std::optional<HTTPEndpoint> endpoint(std::in_place, path_, port_, OpenTo::thisComputer, clock_,
                                       calendar_);
  EXPECT_EQ(endpoint->url(), "http://localhost:" + std::to_string(port_) + "/mcp");
  EXPECT_TRUE(isAnswered("localhost"));
  endpoint.reset();
  EXPECT_FALSE(isListening(port_));
}

TEST_F(HTTPEndpointTest, AnswersOnlyThoseWhoAskThisComputer) {
  const HTTPEndpoint endpoint(path_, port_, OpenTo::thisComputer, clock_, calendar_);
  EXPECT_TRUE(isAnswered("127.0.0.1"));
  EXPECT_FALSE(isAnswered("example.org"));
}

TEST_F(HTTPEndpointTest, AnswersEveryoneWhenItIsOpen) {
  const HTTPEndpoint endpoint(path_, port_, OpenTo::everyone, clock_, calendar_);
  EXPECT_TRUE(isAnswered("example.org"));
}

// Where the endpoint is open to everyone, each would stay for as long as its peer likes.
TEST_F(HTTPEndpointTest, HoldsSoManyConnections) {
  allowDescriptors(1000);
  const HTTPEndpoint endpoint(path_, port_, OpenTo::thisComputer, clock_, calendar_);
  std::vector<Peer> peers;
  for (std::size_t i = 0; i <= kMostEndpointConnections; ++i) {
    peers.emplace_back(port_);
    peers.back().send("POST ");
  }
  EXPECT_EQ(peers[0].receiveAll(), "");
  EXPECT_FALSE(peers[1].hasNews());
}

TEST_F(HTTPEndpointTest, SaysThatThePortIsTaken) {
  const HTTPEndpoint first(path_, port_, OpenTo::thisComputer, clock_, calendar_);
  try {
    const HTTPEndpoint second(path_, port_, OpenTo::thisComputer, clock_, calendar_);
    ADD_FAILURE() << "the port was taken twice";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::address_in_use);
    EXPECT_NE(std::string(error.what())
                  .find("Assistants cannot be served on port " + std::to_string(port_) + ": "),
              std::string::npos)
        << error.what();
  }
}

TEST_F(HTTPEndpointTest, RefusesPortZero) {
  EXPECT_THROW(HTTPEndpoint(path_, 0, OpenTo::everyone, clock_, calendar_), MCPServerError);
}

}  // namespace
}  // namespace tessum
