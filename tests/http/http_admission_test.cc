// A transport with an admission, which says whom it answers and for how long.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "core/http/http_headers.h"
#include "tests/http/http_server.h"
#include "tests/http/loopback.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

constexpr double kForever = 3600;  // seconds
constexpr auto kLongWait = std::chrono::minutes(1);

// The bytes of the answer to a refused request.
std::string refusal(const std::string& reason) {
  return "HTTP/1.1 403 Forbidden\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: " +
         std::to_string(reason.size()) + "\r\nConnection: close\r\n\r\n" + reason;
}

// Serves visitors who give a name, and counts what reaches the engine.
class HTTPAdmissionTest : public testing::Test {
 protected:
  HTTPAdmissionTest() { listen(admission()); }

  static HTTPAdmission admission() {
    return {.refusal = [](const HTTPVisitor& visitor) -> std::optional<std::string> {
              if (headerValues(visitor.head, "name:").size() == 1) return std::nullopt;
              return visitor.isOnThisComputer ? "say your name" : "you are not from here";
            },
            .patienceSeconds = kForever,
            .mostConnections = 1000,
            .mostHeadBytes = 1000};
  }

  void listen(const HTTPAdmission& admission) {
    server_.transport().listen(server_.port(), admission);
    ASSERT_FALSE(server_.transport().listeningError());
  }

  [[nodiscard]] std::uint16_t port() const { return server_.port(); }

  std::atomic<int> asked_ = 0;
  HTTPServer server_{[this](json::PaddedView body) {
    ++asked_;
    return echo(body);
  }};
};

std::string namedPostOf(std::string_view body) {
  return "POST /mcp HTTP/1.1\r\nName: someone\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\n\r\n" + std::string(body);
}

TEST_F(HTTPAdmissionTest, AnswersWhomItAdmitsAsEver) {
  EXPECT_EQ(ask(port(), namedPostOf("body")), jsonAnswer("body"));
  EXPECT_EQ(ask(port(), "GET / HTTP/1.1\r\nName: someone\r\n\r\n"), kGreetingAnswer);
  EXPECT_EQ(ask(port(), namedPostOf("body"), Family::v6), jsonAnswer("body"));
}

TEST_F(HTTPAdmissionTest, RefusesTheOthersWithAReasonThatNoPageMayRead) {
  for (const Family family : {Family::v4, Family::v6}) {
    EXPECT_EQ(ask(port(), postOf("body"), family), refusal("say your name"));
    EXPECT_EQ(ask(port(), "OPTIONS /mcp HTTP/1.1\r\n\r\n", family), refusal("say your name"));
    EXPECT_EQ(ask(port(), kGetRoot, family), refusal("say your name"));
  }
  EXPECT_EQ(asked_, 0);
}

TEST_F(HTTPAdmissionTest, RefusesBeforeTheBodyArrives) {
  Peer peer(port());
  peer.send("POST /mcp HTTP/1.1\r\nContent-Length: 4000000000\r\n\r\n");
  EXPECT_EQ(peer.receiveAll(), refusal("say your name"));
}

TEST_F(HTTPAdmissionTest, AsksOnceForARequestInPieces) {
  Peer peer(port());
  peer.sendByteByByte(namedPostOf("body"));
  EXPECT_EQ(peer.receiveAll(), jsonAnswer("body"));
  Peer refused(port());
  refused.sendByteByByte("GET / HTTP/1.1\r\n\r\n");
  EXPECT_EQ(refused.receiveAll(), refusal("say your name"));
}

TEST_F(HTTPAdmissionTest, EndsAHeadThatIsTooLong) {
  Peer peer(port());
  peer.send("GET / HTTP/1.1\r\nName: " + std::string(1000, 'x'));
  EXPECT_EQ(peer.receiveAll(), "");
  EXPECT_EQ(ask(port(), namedPostOf(std::string(1 << 20, 'x'))),
            jsonAnswer(std::string(1 << 20, 'x')));
}

TEST_F(HTTPAdmissionTest, ClosesIdleAndHalfSentConnections) {
  HTTPAdmission hasty = admission();
  hasty.patienceSeconds = 0.05;
  listen(hasty);
  const std::string request = namedPostOf("body");
  const std::size_t sizes[] = {0, 1, request.find("\r\n\r\n"), request.size() - 1};
  for (const std::size_t size : sizes) {
    Peer peer(port());
    peer.send(std::string_view(request).substr(0, size));
    EXPECT_EQ(peer.receiveAll(), "") << size;
  }
  Peer unreadable(port());
  unreadable.send("unreadable\r\n\r\n");
  EXPECT_EQ(unreadable.receiveAll(), "");
  EXPECT_EQ(asked_, 0);
}

TEST_F(HTTPAdmissionTest, ClosesAConnectionWhoseAnswerNobodyTakes) {
  HTTPServer server(answerAtLength);
  HTTPAdmission hasty = admission();
  hasty.patienceSeconds = 0.05;
  server.transport().listen(server.port(), hasty);
  const int before = openDescriptors();
  Peer peer(server.port());
  peer.send(namedPostOf("body"));
  ASSERT_TRUE(peer.hasNews(kLongWait));
  EXPECT_TRUE(eventually([&] { return openDescriptors() == before + 1; }));
  EXPECT_LT(peer.receiveAll().size(), kLongAnswer.size());
}

TEST_F(HTTPAdmissionTest, GivesThePlaceOfTheOldestConnectionToTheNewest) {
  HTTPAdmission narrow = admission();
  narrow.mostConnections = 3;
  listen(narrow);
  const int before = openDescriptors();
  std::vector<Peer> peers;
  for (int i = 0; i < 3; ++i) {
    peers.emplace_back(port());
    peers.back().send("POST ");
  }
  ASSERT_TRUE(eventually([&] { return openDescriptors() == before + 6; }));
  EXPECT_FALSE(peers[0].hasNews());

  EXPECT_EQ(ask(port(), namedPostOf("body")), jsonAnswer("body"));
  EXPECT_EQ(peers[0].receiveAll(), "");
  EXPECT_FALSE(peers[1].hasNews());

  for (int i = 0; i < 100; ++i) peers.emplace_back(port());
  EXPECT_EQ(ask(port(), namedPostOf("body")), jsonAnswer("body"));
  EXPECT_TRUE(eventually([&] { return openDescriptors() <= before + 103 + 3; }));
}

TEST_F(HTTPAdmissionTest, IsForgottenByAListenWithoutOne) {
  server_.transport().listen(port());
  EXPECT_EQ(ask(port(), postOf("body")), jsonAnswer("body"));
}

TEST(HeaderValues, AreFoundByNameWithoutBlanks) {
  const std::string_view head =
      "GET /host: HTTP/1.1\r\nHost: one\r\nhOST:\t two \r\nX-Host: three\r\nHost : four\r\nHost:";
  EXPECT_EQ(headerValues(head, "host:"), (std::vector<std::string_view>{"one", "two", ""}));
  EXPECT_EQ(headerValues(head, "origin:"), std::vector<std::string_view>());
  EXPECT_EQ(headerValues("Host: alone", "host:"), std::vector<std::string_view>());
}

}  // namespace
}  // namespace tessum
