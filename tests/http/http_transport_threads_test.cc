// The transport and threads, above all when it is destroyed.

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/http/http_server.h"
#include "tests/http/loopback.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

TEST(HTTPTransport, NeverEntersTheEngineConcurrently) {
  std::unique_ptr<HTTPServer> server;
  int inside = 0;  // unguarded on purpose: the thread sanitizer watches it
  std::atomic<int> mistakes = 0;
  server = std::make_unique<HTTPServer>([&](json::PaddedView body) {
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

TEST(HTTPTransport, WaitsForTheCurrentRequestWhenDestroyed) {
  std::promise<void> entered;
  std::promise<void> mayLeave;
  std::atomic<bool> hasLeft = false;
  HTTPServer server([&](json::PaddedView body) {
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

TEST(HTTPTransport, MayBeDestroyedOnItsOwnQueue) {
  std::unique_ptr<HTTPServer> server;
  server = std::make_unique<HTTPServer>([&](json::PaddedView body) {
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

TEST(HTTPTransport, ClosesConnectionsWithoutARequestWhenDestroyed) {
  HTTPServer server;
  Peer silent(server.port());
  Peer halfway(server.port());
  halfway.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
  server.destroyTransport();
  EXPECT_EQ(silent.receiveAll(), "");
  EXPECT_EQ(halfway.receiveAll(), "");
  EXPECT_FALSE(isListening(server.port()));
}

TEST(HTTPTransport, FinishesAnAnswerOnItsWayWhenDestroyed) {
  auto server = std::make_unique<HTTPServer>(answerAtLength);
  Peer peer(server->port());
  peer.send(postOf("{}"));
  std::string answer = peer.receive(1);
  std::thread destroyer([&] { server.reset(); });
  answer += peer.receiveAll();
  peer.close();
  destroyer.join();
  EXPECT_TRUE(answer == jsonAnswer(kLongAnswer));
}

TEST(HTTPTransport, DoesNotWaitForAPeerThatNeverReadsWhenDestroyed) {
  auto server = std::make_unique<HTTPServer>(answerAtLength);
  Peer peer(server->port());
  peer.send(postOf("{}"));
  EXPECT_EQ(peer.receive(1), "H");
  server.reset();  // the test would hang here
  EXPECT_LT(peer.receiveAll().size(), std::size_t{16} << 20);
}

TEST(HTTPTransport, MayBeDestroyedOnAnyThreadWhileRequestsRun) {
  for (int round = 0; round < 30; ++round) {
    auto server = std::make_unique<HTTPServer>();
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

TEST(HTTPTransport, MayStayUnused) {
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
