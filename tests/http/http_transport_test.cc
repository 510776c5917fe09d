// What the transport answers, over real sockets.

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "tests/http/http_server.h"
#include "tests/http/loopback.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

const std::string kNotFoundAnswer = answerOf("HTTP/1.1 404 Not Found", "text/plain", "Not found");
const std::string kAllowed = answerOf("HTTP/1.1 204 No Content", "application/json", "");

class EachFamily : public testing::TestWithParam<Family> {
 protected:
  [[nodiscard]] std::string answerTo(std::string_view request) const {
    return ask(server_.port(), request, GetParam());
  }
  HTTPServer server_;
};

TEST_P(EachFamily, GetsTheExactBytesOfEveryAnswer) {
  EXPECT_EQ(answerTo(kGetRoot), kGreetingAnswer);
  EXPECT_EQ(answerTo(postOf("{\"é\":1}")), jsonAnswer("{\"é\":1}"));
  EXPECT_EQ(answerTo("OPTIONS /mcp HTTP/1.1\r\nOrigin: http://example.com\r\n\r\n"), kAllowed);
  EXPECT_EQ(answerTo("OPTIONS /anything HTTP/1.1\r\n\r\n"), kAllowed);
  EXPECT_EQ(answerTo("GET /mcp HTTP/1.1\r\n\r\n"), kNotFoundAnswer);
  EXPECT_EQ(answerTo("POST /mcp?session=1 HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}"),
            kNotFoundAnswer);
  EXPECT_EQ(answerTo("post /mcp HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}"), kNotFoundAnswer);
}

TEST_P(EachFamily, GetsTheAnswerToBytesThatComeOneByOne) {
  Peer peer(server_.port(), GetParam());
  peer.sendByteByByte(postOf("one by one"));
  EXPECT_EQ(peer.receiveAll(), jsonAnswer("one by one"));
}

INSTANTIATE_TEST_SUITE_P(Families, EachFamily, testing::Values(Family::v4, Family::v6));

TEST(HTTPTransport, SendsNoBodyWhenTheEngineGivesNoAnswer) {
  const HTTPServer server([](json::PaddedView) { return std::nullopt; });
  EXPECT_EQ(ask(server.port(), postOf("{}")), jsonAnswer(""));
}

TEST(HTTPTransport, GivesTheEngineExactlyTheDeclaredBody) {
  const HTTPServer server;
  const auto answerTo = [&](std::string_view headers, std::string_view body) {
    return ask(server.port(),
               "POST /mcp HTTP/1.1\r\n" + std::string(headers) + "\r\n" + std::string(body));
  };
  EXPECT_EQ(answerTo("", "ignored"), jsonAnswer(""));
  EXPECT_EQ(answerTo("Content-Length: abc\r\n", "ignored"), jsonAnswer(""));
  EXPECT_EQ(answerTo("Content-Length: -1\r\n", "ignored"), jsonAnswer(""));
  EXPECT_EQ(answerTo("Content-Length: 99999999999999999999\r\n", "ignored"), jsonAnswer(""));
  EXPECT_EQ(answerTo("Content-Length : 4\r\n", "ignored"), jsonAnswer(""));
  EXPECT_EQ(answerTo("CONTENT-LENGTH: 4\r\n", "body"), jsonAnswer("body"));
  EXPECT_EQ(answerTo("Content-Length: 4\r\n", "body and more"), jsonAnswer("body"));
}

TEST(HTTPTransport, AnswersBodiesOfAnySize) {
  const HTTPServer server;
  for (const std::size_t size : {1U, 65535U, 65536U, 65537U, 1U << 20, (8U << 20) + 1}) {
    std::string body(size, '\0');
    for (std::size_t i = 0; i < size; ++i) body[i] = static_cast<char>(i * 31 + i / 251);
    Peer peer(server.port());
    peer.send(postOf(body));
    EXPECT_TRUE(peer.receiveAll() == jsonAnswer(body)) << size << " bytes";
  }
}

TEST(HTTPTransport, WaitsForTheWholeRequest) {
  std::atomic<int> calls = 0;
  const HTTPServer server([&](json::PaddedView body) {
    ++calls;
    return echo(body);
  });
  const std::string request = postOf("several segments");
  Peer peer(server.port());
  std::size_t sent = 0;
  for (const std::size_t next : {4U, 18U, 30U, 60U, static_cast<unsigned>(request.size() - 1)}) {
    peer.send(std::string_view(request).substr(sent, next - sent));
    sent = next;
    // The queue handles one thing after another: the bytes sent above have been read by now.
    EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
    EXPECT_FALSE(peer.hasNews());
    EXPECT_EQ(calls, 0);
  }
  peer.send(std::string_view(request).substr(sent));
  EXPECT_EQ(peer.receiveAll(), jsonAnswer("several segments"));
  EXPECT_EQ(calls, 1);
}

TEST(HTTPTransport, AnswersARequestLineOnlyOnceItsHeadIsComplete) {
  const HTTPServer server;
  Peer peer(server.port());
  peer.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
  EXPECT_FALSE(peer.hasNews());
  peer.send("\r\n");
  EXPECT_EQ(peer.receiveAll(), kGreetingAnswer);
}

TEST(HTTPTransport, NeverAnswersAHeadThatIsNoRequest) {
  const HTTPServer server;
  for (const std::string_view bytes : {"GET\r\n\r\n", "GET / \xFF\r\n\r\n", "\r\n\r\n"}) {
    Peer peer(server.port());
    peer.send(bytes);
    peer.send(kGetRoot);
    EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
    EXPECT_FALSE(peer.hasNews());
    peer.endSending();
    EXPECT_EQ(peer.receiveAll(), "");
  }
}

TEST(HTTPTransport, AnswersOneRequestAConnection) {
  const HTTPServer server;
  Peer peer(server.port());
  peer.send(postOf("first") + postOf("second"));
  EXPECT_EQ(peer.receiveAll(), jsonAnswer("first"));

  Peer patient(server.port());
  patient.send(postOf("first"));
  EXPECT_EQ(patient.receiveAll(), jsonAnswer("first"));
  patient.send(postOf("second"));
  EXPECT_EQ(patient.receiveAll(), "");
}

TEST(HTTPTransport, DoesNotLoseTheAnswerToAPeerThatSendsMoreThanItDeclared) {
  const HTTPServer server;
  const std::string surplus(1 << 20, 's');
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(ask(server.port(), postOf("declared") + surplus), jsonAnswer("declared"));
  }
}

TEST(HTTPTransport, DoesNotLoseALongAnswerToAPeerThatSendsMoreThanItDeclared) {
  const HTTPServer server(answerAtLength);
  Peer peer(server.port());
  std::thread sender([&] { peer.send(postOf("declared") + std::string(4 << 20, 's')); });
  const std::string answer = peer.receiveAll();
  sender.join();
  EXPECT_FALSE(peer.wasReset());
  EXPECT_TRUE(answer == jsonAnswer(kLongAnswer));
}

TEST(HTTPTransport, ClosesWhenThePeerNeverDoes) {
  const HTTPServer server;
  Peer peer(server.port());
  peer.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
  const int before = openDescriptors();
  peer.send("\r\n");
  EXPECT_EQ(peer.receiveAll(), kGreetingAnswer);
  EXPECT_TRUE(eventually([&] { return openDescriptors() < before; }));
}

TEST(HTTPTransport, ClosesTheConnectionWhenMemoryRunsOut) {
  const HTTPServer server([](json::PaddedView body) {
    if (body.text() == "large") throw std::bad_alloc();
    return echo(body);
  });
  EXPECT_EQ(ask(server.port(), postOf("large")), "");
  EXPECT_EQ(ask(server.port(), postOf("small")), jsonAnswer("small"));
}

}  // namespace
}  // namespace tessum
