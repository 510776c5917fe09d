// Peers that leave early, peers that wait, and many peers.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/http/allocated_bytes.h"
#include "tests/http/http_server.h"
#include "tests/http/loopback.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

TEST(HTTPTransport, KeepsServingWhereverPeersLeave) {
  const HTTPServer server;
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
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
}

TEST(HTTPTransport, KeepsServingWhenPeersResetDuringAnAnswer) {
  HTTPServer server(answerAtLength);
  const int before = openDescriptors();
  for (int i = 0; i < 20; ++i) {
    Peer peer(server.port());
    peer.send(postOf("{}"));
    EXPECT_EQ(peer.receive(15), "HTTP/1.1 200 OK");
    peer.reset();
  }
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
  EXPECT_TRUE(eventually([&] { return openDescriptors() <= before; }));
}

TEST(HTTPTransport, KeepsNothingOfAThousandRequestsThatWereDropped) {
  const HTTPServer server;
  const std::string head = "POST /mcp HTTP/1.1\r\nContent-Length: 4000000000000\r\n\r\n";
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
  const int descriptors = openDescriptors();
  for (int i = 0; i < 1000; ++i) {
    Peer peer(server.port());
    peer.send(std::string_view(head).substr(0, static_cast<std::size_t>(i) % head.size() + 1));
    if (i % 2 == 0) peer.reset();
  }
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
  EXPECT_TRUE(eventually([&] { return openDescriptors() <= descriptors; }));
}

TEST(HTTPTransport, ServesOthersBesideFiveHundredIdleConnections) {
  allowDescriptors(2048);
  const HTTPServer server;
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
  const HTTPServer server;
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

}  // namespace
}  // namespace tessum
