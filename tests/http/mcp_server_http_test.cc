// The real engine, served over HTTP.

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "core/mcp/mcp_server.h"
#include "core/platform/calendar.h"
#include "core/platform/clock.h"
#include "core/store/database.h"
#include "tests/http/loopback.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

class MCPServerOverHTTP : public testing::Test {
 protected:
  [[nodiscard]] std::unique_ptr<MCPServer> serverAt(std::uint16_t port) {
    const auto database = std::make_shared<Database>(folder_.file("activities.db"), calendar_);
    return std::make_unique<MCPServer>(database, port, clock_, calendar_);
  }

 private:
  TemporaryFolder folder_;
  SystemClock clock_;
  SystemCalendar calendar_;
};

TEST_F(MCPServerOverHTTP, NamesItsEndpoint) {
  EXPECT_EQ(serverAt(7384)->endpointURL(), "http://localhost:7384/mcp");
  EXPECT_EQ(serverAt(65535)->endpointURL(), "http://localhost:65535/mcp");
  EXPECT_EQ(serverAt(0)->endpointURL(), "http://localhost:0/mcp");
}

TEST_F(MCPServerOverHTTP, AnswersWhatTheEngineAnswers) {
  const auto server = serverAt(freePort());
  server->start();
  ASSERT_FALSE(server->listeningError());
  for (const std::string_view message : {
           R"({"jsonrpc":"2.0","id":1,"method":"initialize"})",
           R"({"jsonrpc":"2.0","id":"two","method":"tools/list"})",
           R"({"jsonrpc":"2.0","id":3,"method":"ping"})",
           R"({"jsonrpc":"2.0","method":"notifications/initialized"})",
           R"([])",
           R"({"jsonrpc":)",
           "",
       }) {
    const auto expected = serverAt(1)->handleBody(json::PaddedString(message).view());
    EXPECT_EQ(ask(server->port(), postOf(message)), jsonAnswer(expected.value_or(""))) << message;
  }
}

TEST_F(MCPServerOverHTTP, WritesToTheStoreAndReadsFromIt) {
  const auto server = serverAt(freePort());
  server->start();
  const auto call = [&](std::string_view tool, std::string_view arguments) {
    return ask(server->port(),
               postOf(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":")" +
                      std::string(tool) + R"(","arguments":)" + std::string(arguments) + "}}"));
  };
  EXPECT_NE(call("annotate", R"({"text":"over HTTP, é"})").find("\"isError\":false"),
            std::string::npos);
  EXPECT_NE(call("get_annotations", "{}").find("over HTTP, é"), std::string::npos);
}

TEST_F(MCPServerOverHTTP, RefusesPortZero) {
  const auto server = serverAt(0);
  try {
    server->start();
    ADD_FAILURE() << "port 0 was taken";
  } catch (const MCPServerError& error) {
    EXPECT_EQ(error.errorCase(), MCPServerError::Case::invalidPort);
    EXPECT_EQ(error.description(), "Invalid port number: 0");
  }
  EXPECT_FALSE(server->listeningError());
  server->stop();
}

TEST_F(MCPServerOverHTTP, ListensFromStartToStop) {
  const std::uint16_t port = freePort();
  const auto server = serverAt(port);
  server->stop();
  EXPECT_FALSE(isListening(port));
  for (int i = 0; i < 3; ++i) {
    server->start();
    EXPECT_TRUE(isListening(port));
    EXPECT_TRUE(isListening(port, Family::v6));
    server->start();
    EXPECT_TRUE(isListening(port));
    server->stop();
    EXPECT_FALSE(isListening(port));
    server->stop();
  }
}

TEST_F(MCPServerOverHTTP, StartsThoughThePortIsTakenAndReportsIt) {
  const std::uint16_t port = freePort();
  const auto first = serverAt(port);
  const auto second = serverAt(port);
  first->start();
  second->start();
  EXPECT_FALSE(first->listeningError());
  EXPECT_EQ(second->listeningError(), std::errc::address_in_use);
  first->stop();
  EXPECT_FALSE(isListening(port));
  second->start();
  EXPECT_FALSE(second->listeningError());
  EXPECT_TRUE(isListening(port));
}

TEST_F(MCPServerOverHTTP, StopsListeningWhenDestroyed) {
  const std::uint16_t port = freePort();
  auto server = serverAt(port);
  server->start();
  Peer peer(port);
  server.reset();
  EXPECT_EQ(peer.receiveAll(), "");
  EXPECT_FALSE(isListening(port));
}

TEST_F(MCPServerOverHTTP, MayBeDestroyedOnAnyThreadWhileRequestsRun) {
  for (int round = 0; round < 10; ++round) {
    const std::uint16_t port = freePort();
    auto server = serverAt(port);
    server->start();
    const std::string message = R"({"jsonrpc":"2.0","id":1,"method":"tools/list"})";
    const std::string answer = ask(port, postOf(message));
    std::vector<std::thread> clients;
    for (int i = 0; i < 4; ++i) {
      clients.emplace_back([&] {
        while (auto peer = Peer::tryConnect(port)) {
          peer->send(postOf(message));
          const std::string answered = peer->receiveAll();
          EXPECT_TRUE(answered.empty() || answered == answer) << answered;
        }
      });
    }
    std::thread([&] { server.reset(); }).join();
    for (auto& client : clients) client.join();
  }
}

}  // namespace
}  // namespace tessum
