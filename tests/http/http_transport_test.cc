// The transport over real sockets, with small functions in the engine's place.

#include "core/http/http_transport.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <future>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/http/allocated_bytes.h"
#include "tests/http/loopback.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

const std::string kGreeting =
    answerOf("HTTP/1.1 200 OK", "text/plain",
             "Tessum MCP Server \xE2\x80\x93 POST /mcp with a JSON-RPC 2.0 request.");
const std::string kNotFound = answerOf("HTTP/1.1 404 Not Found", "text/plain", "Not found");
const std::string kAllowed = answerOf("HTTP/1.1 204 No Content", "application/json", "");
const std::string kGetRoot = "GET / HTTP/1.1\r\n\r\n";

std::optional<std::string> echo(json::PaddedView body) {
  return std::string(body.text());
}

// An answer that no socket buffer holds.
std::optional<std::string> answerAtLength(json::PaddedView) {
  return std::string(16 << 20, 'x');
}

// A transport that listens on a free port.
class Server {
 public:
  explicit Server(HTTPTransport::HandleBody handleBody = echo)
      : transport_(std::make_unique<HTTPTransport>(queue_, std::move(handleBody))) {
    transport_->listen(port_);
    EXPECT_FALSE(transport_->listeningError()) << transport_->listeningError().message();
  }

  [[nodiscard]] std::uint16_t port() const { return port_; }
  [[nodiscard]] HTTPTransport& transport() { return *transport_; }
  [[nodiscard]] SerialQueue& queue() { return queue_; }
  void destroyTransport() { transport_.reset(); }

 private:
  const std::uint16_t port_ = freePort();
  ThreadQueue queue_{"com.example.http"};
  std::unique_ptr<HTTPTransport> transport_;
};

////////////////////////////////////////////////////////////////////////////////////////////////
// Answers.

class EachFamily : public testing::TestWithParam<Family> {
 protected:
  [[nodiscard]] std::string answerTo(std::string_view request) const {
    return ask(server_.port(), request, GetParam());
  }
  Server server_;
};

TEST_P(EachFamily, GetsTheExactBytesOfEveryAnswer) {
  EXPECT_EQ(answerTo(kGetRoot), kGreeting);
  EXPECT_EQ(answerTo(postOf("{\"é\":1}")), jsonAnswer("{\"é\":1}"));
  EXPECT_EQ(answerTo("OPTIONS /mcp HTTP/1.1\r\nOrigin: http://example.com\r\n\r\n"), kAllowed);
  EXPECT_EQ(answerTo("OPTIONS /anything HTTP/1.1\r\n\r\n"), kAllowed);
  EXPECT_EQ(answerTo("GET /mcp HTTP/1.1\r\n\r\n"), kNotFound);
  EXPECT_EQ(answerTo("POST /mcp?session=1 HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}"), kNotFound);
  EXPECT_EQ(answerTo("post /mcp HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}"), kNotFound);
}

TEST_P(EachFamily, GetsTheAnswerToBytesThatComeOneByOne) {
  Peer peer(server_.port(), GetParam());
  peer.sendByteByByte(postOf("one by one"));
  EXPECT_EQ(peer.receiveAll(), jsonAnswer("one by one"));
}

INSTANTIATE_TEST_SUITE_P(Families, EachFamily, testing::Values(Family::v4, Family::v6));

TEST(HTTPTransport, SaysNothingWhereTheEngineSaysNothing) {
  const Server server([](json::PaddedView) { return std::nullopt; });
  EXPECT_EQ(ask(server.port(), postOf("{}")), jsonAnswer(""));
}

TEST(HTTPTransport, GivesTheEngineExactlyTheDeclaredBody) {
  const Server server;
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
  const Server server;
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
  const Server server([&](json::PaddedView body) {
    ++calls;
    return echo(body);
  });
  const std::string request = postOf("several segments");
  Peer peer(server.port());
  std::size_t sent = 0;
  for (const std::size_t next : {4U, 18U, 30U, 60U, static_cast<unsigned>(request.size() - 1)}) {
    peer.send(std::string_view(request).substr(sent, next - sent));
    sent = next;
    // The queue serves one thing after another: what was sent above has been looked at.
    EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
    EXPECT_FALSE(peer.hasNews());
    EXPECT_EQ(calls, 0);
  }
  peer.send(std::string_view(request).substr(sent));
  EXPECT_EQ(peer.receiveAll(), jsonAnswer("several segments"));
  EXPECT_EQ(calls, 1);
}

TEST(HTTPTransport, AnswersARequestLineOnlyOnceItsHeadIsComplete) {
  const Server server;
  Peer peer(server.port());
  peer.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
  EXPECT_FALSE(peer.hasNews());
  peer.send("\r\n");
  EXPECT_EQ(peer.receiveAll(), kGreeting);
}

TEST(HTTPTransport, NeverAnswersAHeadThatIsNoRequest) {
  const Server server;
  for (const std::string_view bytes : {"GET\r\n\r\n", "GET / \xFF\r\n\r\n", "\r\n\r\n"}) {
    Peer peer(server.port());
    peer.send(bytes);
    peer.send(kGetRoot);
    EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
    EXPECT_FALSE(peer.hasNews());
    peer.endSending();
    EXPECT_EQ(peer.receiveAll(), "");
  }
}

TEST(HTTPTransport, AnswersOneRequestAConnection) {
  const Server server;
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
  const Server server;
  const std::string surplus(1 << 20, 's');
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(ask(server.port(), postOf("declared") + surplus), jsonAnswer("declared"));
  }
}

TEST(HTTPTransport, DoesNotLoseALongAnswerToAPeerThatSendsMoreThanItDeclared) {
  const Server server(answerAtLength);
  Peer peer(server.port());
  std::thread sender([&] { peer.send(postOf("declared") + std::string(4 << 20, 's')); });
  const std::string answer = peer.receiveAll();
  sender.join();
  EXPECT_FALSE(peer.wasReset());
  EXPECT_TRUE(answer == jsonAnswer(*answerAtLength(json::PaddedString("").view())));
}

TEST(HTTPTransport, ClosesOnAPeerThatNeverDoes) {
  const Server server;
  Peer peer(server.port());
  peer.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
  const int before = openDescriptors();
  peer.send("\r\n");
  EXPECT_EQ(peer.receiveAll(), kGreeting);
  EXPECT_TRUE(eventually([&] { return openDescriptors() < before; }));
}

TEST(HTTPTransport, ClosesTheConnectionWhenMemoryRunsOut) {
  const Server server([](json::PaddedView body) {
    if (body.text() == "large") throw std::bad_alloc();
    return echo(body);
  });
  EXPECT_EQ(ask(server.port(), postOf("large")), "");
  EXPECT_EQ(ask(server.port(), postOf("small")), jsonAnswer("small"));
}

////////////////////////////////////////////////////////////////////////////////////////////////
// Peers that go.

TEST(HTTPTransport, ServesOnWhereverPeersGo) {
  const Server server;
  const std::string request = postOf("body");
  for (std::size_t size = 0; size <= request.size(); ++size) {
    const std::string_view part = std::string_view(request).substr(0, size);
    Peer closing(server.port());
    closing.send(part);
    closing.close();

    Peer resetting(server.port());
    resetting.send(part);
    resetting.reset();

    Peer ending(server.port());
    ending.send(part);
    ending.endSending();
    EXPECT_EQ(ending.receiveAll(), size == request.size() ? jsonAnswer("body") : "");
    EXPECT_FALSE(ending.wasReset());
  }
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
}

TEST(HTTPTransport, ServesOnWhenPeersResetInTheMiddleOfAnAnswer) {
  Server server(answerAtLength);
  const int before = openDescriptors();
  for (int i = 0; i < 20; ++i) {
    Peer peer(server.port());
    peer.send(postOf("{}"));
    EXPECT_EQ(peer.receive(15), "HTTP/1.1 200 OK");
    peer.reset();
  }
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
  EXPECT_TRUE(eventually([&] { return openDescriptors() <= before; }));
}

TEST(HTTPTransport, KeepsNothingOfAThousandRequestsThatWereDropped) {
  const Server server;
  const std::string head = "POST /mcp HTTP/1.1\r\nContent-Length: 4000000000000\r\n\r\n";
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
  const int descriptors = openDescriptors();
  for (int i = 0; i < 1000; ++i) {
    Peer peer(server.port());
    peer.send(std::string_view(head).substr(0, static_cast<std::size_t>(i) % head.size() + 1));
    if (i % 2 == 0) peer.reset();
  }
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
  EXPECT_TRUE(eventually([&] { return openDescriptors() <= descriptors; }));
}

TEST(HTTPTransport, ServesOthersBesideFiveHundredIdleConnections) {
  allowDescriptors(2048);
  const Server server;
  std::vector<Peer> idle;
  for (int i = 0; i < 500; ++i) {
    idle.emplace_back(server.port());
    if (i % 2 == 0) idle.back().send("POST /mcp HTTP/1.1\r\n");
  }
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(ask(server.port(), postOf("busy")), jsonAnswer("busy"));
  }
  for (auto& peer : idle) EXPECT_FALSE(peer.hasNews());
  idle.front().send("Content-Length: 4\r\n\r\nlate");
  EXPECT_EQ(idle.front().receiveAll(), jsonAnswer("late"));
}

TEST(HTTPTransport, KeepsNothingOfTenThousandRequests) {
  const Server server;
  const auto serve = [&](int count) {
    const std::string answer = jsonAnswer("{}");
    int right = 0;
    for (int i = 0; i < count; ++i) right += ask(server.port(), postOf("{}")) == answer;
    EXPECT_EQ(right, count);
  };
  serve(100);
  const int descriptors = openDescriptors();
  const std::size_t bytes = allocatedBytes();
  serve(10000);
  EXPECT_TRUE(eventually([&] { return openDescriptors() <= descriptors; }));
  EXPECT_TRUE(eventually([&] { return allocatedBytes() < bytes + 65536; }))
      << allocatedBytes() - bytes << " bytes more";
}

////////////////////////////////////////////////////////////////////////////////////////////////
// Listening.

TEST(HTTPTransport, AcceptsNothingOnceItIsStopped) {
  Server server;
  Peer accepted(server.port());
  accepted.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
  server.transport().stop();
  EXPECT_FALSE(isListening(server.port()));
  EXPECT_FALSE(isListening(server.port(), Family::v6));
  accepted.send("\r\n");
  EXPECT_EQ(accepted.receiveAll(), kGreeting);
  server.transport().stop();
  EXPECT_FALSE(server.transport().listeningError());
}

TEST(HTTPTransport, ListensAgainAtOnce) {
  Server server;
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);  // leaves the port in use for a while
    server.transport().stop();
    server.transport().listen(server.port());
    EXPECT_FALSE(server.transport().listeningError());
  }
}

TEST(HTTPTransport, ReplacesTheListenerOfBefore) {
  Server server;
  Peer accepted(server.port());
  accepted.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
  const int descriptors = openDescriptors();
  const std::uint16_t other = freePort();
  server.transport().listen(other);
  EXPECT_FALSE(isListening(server.port()));
  EXPECT_EQ(ask(other, kGetRoot), kGreeting);
  server.transport().listen(other);
  EXPECT_EQ(ask(other, kGetRoot), kGreeting);
  EXPECT_TRUE(eventually([&] { return openDescriptors() <= descriptors; }));
  accepted.send("\r\n");
  EXPECT_EQ(accepted.receiveAll(), kGreeting);
}

TEST(HTTPTransport, ThrowsNothingWhenThePortIsTaken) {
  const Server first;
  ThreadQueue queue("com.example.second");
  HTTPTransport second(queue, echo);
  second.listen(first.port());
  EXPECT_EQ(second.listeningError(), std::errc::address_in_use);
  EXPECT_EQ(ask(first.port(), postOf("still the first")), jsonAnswer("still the first"));
  second.stop();
  EXPECT_FALSE(second.listeningError());
  EXPECT_TRUE(isListening(first.port()));
}

TEST(HTTPTransport, LeavesNoSocketToProgramsItStarts) {
  std::atomic<int> kept = 0;
  const Server server([&](json::PaddedView) {
    for (int descriptor = 3; descriptor < 256; ++descriptor) {
      struct stat status {};
      if (fstat(descriptor, &status) != 0 || !S_ISSOCK(status.st_mode)) continue;
      if ((fcntl(descriptor, F_GETFD) & FD_CLOEXEC) == 0) ++kept;
    }
    return std::nullopt;
  });
  EXPECT_EQ(ask(server.port(), postOf("{}")), jsonAnswer(""));
  EXPECT_EQ(kept, 0);
}

////////////////////////////////////////////////////////////////////////////////////////////////
// Threads.

TEST(HTTPTransport, NeverEntersTheEngineConcurrently) {
  std::unique_ptr<Server> server;
  int inside = 0;  // unguarded on purpose: the thread sanitizer watches it
  std::atomic<int> mistakes = 0;
  server = std::make_unique<Server>([&](json::PaddedView body) {
    if (++inside != 1 || !server->queue().isCurrent()) ++mistakes;
    std::this_thread::yield();
    --inside;
    return echo(body);
  });
  std::vector<std::thread> clients;
  for (int i = 0; i < 8; ++i) {
    clients.emplace_back([&] {
      for (int k = 0; k < 50; ++k) {
        EXPECT_EQ(ask(server->port(), postOf("{}")), jsonAnswer("{}"));
      }
    });
  }
  for (auto& client : clients) client.join();
  EXPECT_EQ(mistakes, 0);
}

TEST(HTTPTransport, WaitsForTheRequestThatIsBeingAnsweredWhenItGoes) {
  std::promise<void> entered;
  std::promise<void> mayLeave;
  std::atomic<bool> hasLeft = false;
  Server server([&](json::PaddedView body) {
    entered.set_value();
    mayLeave.get_future().wait();
    hasLeft = true;
    return echo(body);
  });
  Peer peer(server.port());
  peer.send(postOf("last words"));
  entered.get_future().wait();
  std::thread destroyer([&] {
    server.destroyTransport();
    EXPECT_TRUE(hasLeft);
  });
  mayLeave.set_value();
  destroyer.join();
  EXPECT_EQ(peer.receiveAll(), jsonAnswer("last words"));
}

TEST(HTTPTransport, MayGoOnItsOwnQueue) {
  std::unique_ptr<Server> server;
  server = std::make_unique<Server>([&](json::PaddedView body) {
    server->destroyTransport();
    return echo(body);
  });
  Peer peer(server->port());
  Peer idle(server->port());
  peer.send(postOf("the end"));
  EXPECT_EQ(peer.receiveAll(), jsonAnswer("the end"));
  EXPECT_EQ(idle.receiveAll(), "");
  EXPECT_FALSE(isListening(server->port()));
}

TEST(HTTPTransport, ClosesConnectionsWithoutARequestWhenItGoes) {
  Server server;
  Peer silent(server.port());
  Peer halfway(server.port());
  halfway.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreeting);
  server.destroyTransport();
  EXPECT_EQ(silent.receiveAll(), "");
  EXPECT_EQ(halfway.receiveAll(), "");
  EXPECT_FALSE(isListening(server.port()));
}

TEST(HTTPTransport, LetsAnAnswerOnItsWayArriveWhenItGoes) {
  auto server = std::make_unique<Server>(answerAtLength);
  Peer peer(server->port());
  peer.send(postOf("{}"));
  std::string answer = peer.receive(1);
  std::thread destroyer([&] { server.reset(); });
  answer += peer.receiveAll();
  peer.close();
  destroyer.join();
  EXPECT_TRUE(answer == jsonAnswer(*answerAtLength(json::PaddedString("").view())));
}

TEST(HTTPTransport, DoesNotWaitForAPeerThatNeverReadsWhenItGoes) {
  auto server = std::make_unique<Server>(answerAtLength);
  Peer peer(server->port());
  peer.send(postOf("{}"));
  EXPECT_EQ(peer.receive(1), "H");
  server.reset();  // the test would hang here
  EXPECT_LT(peer.receiveAll().size(), std::size_t{16} << 20);
}

TEST(HTTPTransport, MayGoOnAnyThreadWhileRequestsRun) {
  for (int round = 0; round < 30; ++round) {
    auto server = std::make_unique<Server>();
    const std::uint16_t port = server->port();
    std::atomic<int> served = 0;
    std::vector<std::thread> clients;
    for (int i = 0; i < 4; ++i) {
      clients.emplace_back([&] {
        while (auto peer = Peer::tryConnect(port)) {
          peer->send(postOf("{}"));
          served += peer->receiveAll() == jsonAnswer("{}");
        }
      });
    }
    EXPECT_TRUE(eventually([&] { return served >= round; }));
    std::thread([&] { server.reset(); }).join();
    for (auto& client : clients) client.join();
  }
}

TEST(HTTPTransport, MayBeMadeAndLeftUnused) {
  ThreadQueue queue("com.example.unused");
  const int descriptors = openDescriptors();
  for (int i = 0; i < 10; ++i) {
    ThreadQueue own("com.example.unused");
    const HTTPTransport transport(own, echo);
  }
  EXPECT_EQ(openDescriptors(), descriptors);
}

}  // namespace
}  // namespace tessum
