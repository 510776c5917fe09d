// Starting and stopping to listen.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <system_error>

#include "tests/http/http_server.h"
#include "tests/http/loopback.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

TEST(HTTPTransport, AcceptsNothingOnceItIsStopped) {
  HTTPServer server;
  Peer accepted(server.port());
  accepted.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
  server.transport().stop();
  EXPECT_FALSE(isListening(server.port()));
  EXPECT_FALSE(isListening(server.port(), Family::v6));
  accepted.send("\r\n");
  EXPECT_EQ(accepted.receiveAll(), kGreetingAnswer);
  server.transport().stop();
  EXPECT_FALSE(server.transport().listeningError());
}

TEST(HTTPTransport, ListensAgainAtOnce) {
  HTTPServer server;
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);  // leaves the port in use for a while
    server.transport().stop();
    server.transport().listen(server.port());
    EXPECT_FALSE(server.transport().listeningError());
  }
}

TEST(HTTPTransport, ReplacesTheListenerOfBefore) {
  HTTPServer server;
  Peer accepted(server.port());
  accepted.send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(ask(server.port(), kGetRoot), kGreetingAnswer);
  const int descriptors = openDescriptors();
  const std::uint16_t other = freePort();
  server.transport().listen(other);
  EXPECT_FALSE(isListening(server.port()));
  EXPECT_EQ(ask(other, kGetRoot), kGreetingAnswer);
  server.transport().listen(other);
  EXPECT_EQ(ask(other, kGetRoot), kGreetingAnswer);
  EXPECT_TRUE(eventually([&] { return openDescriptors() <= descriptors; }));
  accepted.send("\r\n");
  EXPECT_EQ(accepted.receiveAll(), kGreetingAnswer);
}

TEST(HTTPTransport, ThrowsNothingWhenThePortIsTaken) {
  const HTTPServer first;
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
  const HTTPServer server([&](json::PaddedView) {
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

}  // namespace
}  // namespace tessum
