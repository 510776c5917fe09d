#include "desktop/recording/http_endpoint.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <system_error>

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
};

TEST_F(HTTPEndpointTest, IsOpenFromItsMakingToItsEnd) {
  std::optional<HTTPEndpoint> endpoint(std::in_place, path_, port_, clock_, calendar_);
  EXPECT_EQ(endpoint->url(), "http://localhost:" + std::to_string(port_) + "/mcp");
  const std::string ping = R"({"jsonrpc":"2.0","id":1,"method":"ping"})";
  EXPECT_NE(ask(port_, postOf(ping)).find("Method not found: ping"), std::string::npos);
  endpoint.reset();
  EXPECT_FALSE(isListening(port_));
}

TEST_F(HTTPEndpointTest, SaysThatThePortIsTaken) {
  const HTTPEndpoint first(path_, port_, clock_, calendar_);
  try {
    const HTTPEndpoint second(path_, port_, clock_, calendar_);
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
  EXPECT_THROW(HTTPEndpoint(path_, 0, clock_, calendar_), MCPServerError);
}

}  // namespace
}  // namespace tessum
