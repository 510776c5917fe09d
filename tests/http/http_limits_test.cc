// The transport in child processes with few resources. Each test is a client of one.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "tests/http/forked_child.h"
#include "tests/http/http_server.h"
#include "tests/http/loopback.h"

namespace tessum {
namespace {

// Runs in the child: serves `port` until the parent releases it.
void serve(ForkedChild::Link& parent, std::uint16_t port) {
  ThreadQueue queue("com.example.child");
  HTTPTransport transport(queue, echo);
  transport.listen(port);
  parent.report(transport.listeningError().value());
  parent.waitUntilReleased();
}

void limitDescriptors(rlim_t count) {
  const rlimit limit{count, count};
  setrlimit(RLIMIT_NOFILE, &limit);
}

class FewDescriptors : public testing::TestWithParam<int> {};

TEST_P(FewDescriptors, AreEnoughToServeManyClients) {
  const std::uint16_t port = freePort();
  ForkedChild child([&](ForkedChild::Link& parent) {
    limitDescriptors(static_cast<rlim_t>(GetParam()));
    serve(parent, port);
  });
  ASSERT_EQ(child.reported(), 0);

  // More connections than the child has descriptors: those it cannot accept wait their turn.
  std::vector<Peer> idle;
  for (int i = 0; i < 80; ++i) idle.emplace_back(port);
  Peer late(port);
  late.send(kGetRoot);
  EXPECT_FALSE(late.hasNews());
  idle.clear();
  EXPECT_EQ(late.receiveAll(), kGreetingAnswer);
  late.close();

  for (int i = 0; i < 200; ++i) EXPECT_EQ(ask(port, postOf("{}")), jsonAnswer("{}"));
  EXPECT_EQ(child.release(), 0);
}

TEST_P(FewDescriptors, LetManyPeersAtOnceHaveTheirAnswers) {
  const std::uint16_t port = freePort();
  ForkedChild child([&](ForkedChild::Link& parent) {
    limitDescriptors(static_cast<rlim_t>(GetParam()));
    serve(parent, port);
  });
  ASSERT_EQ(child.reported(), 0);
  std::vector<Peer> peers;
  for (int i = 0; i < 100; ++i) {
    peers.emplace_back(port);
    peers.back().send(postOf("{}"));
  }
  for (auto& peer : peers) {
    EXPECT_EQ(peer.receiveAll(), jsonAnswer("{}"));
    peer.close();
  }
  EXPECT_EQ(child.release(), 0);
}

INSTANTIATE_TEST_SUITE_P(Counts, FewDescriptors, testing::Values(16, 24, 32, 64));

TEST(HTTPTransportLimits, PausesWhileThereAreNoDescriptors) {
  const std::uint16_t port = freePort();
  ForkedChild child([&](ForkedChild::Link& parent) {
    limitDescriptors(16);
    serve(parent, port);
  });
  ASSERT_EQ(child.reported(), 0);
  std::vector<Peer> idle;
  for (int i = 0; i < 40; ++i) idle.emplace_back(port);
  EXPECT_FALSE(idle.back().hasNews(std::chrono::milliseconds(500)));
  idle.clear();
  EXPECT_EQ(ask(port, kGetRoot), kGreetingAnswer);
  EXPECT_EQ(child.release(), 0);
  EXPECT_LT(child.processorSeconds(), 0.25);
}

TEST(HTTPTransportLimits, ThrowsWhenThereIsNoDescriptorForIt) {
  ForkedChild child([](ForkedChild::Link& parent) {
    limitDescriptors(static_cast<rlim_t>(openDescriptors()));
    ThreadQueue queue("com.example.child");
    try {
      HTTPTransport transport(queue, echo);
      transport.listen(1);
      parent.report(0);
    } catch (const std::system_error& error) {
      parent.report(error.code().value());
    }
  });
  EXPECT_EQ(child.reported(), EMFILE);
  EXPECT_EQ(child.release(), 0);
}

TEST(HTTPTransportLimits, KeepsTheOldListenerWhenThereIsNoDescriptorForAnother) {
  constexpr int kFew = 32;
  const std::uint16_t port = freePort();
  ForkedChild child([&](ForkedChild::Link& parent) {
    ThreadQueue queue("com.example.child");
    HTTPTransport transport(queue, echo);
    transport.listen(port);
    limitDescriptors(kFew);
    while (dup(STDIN_FILENO) != -1) {
    }
    int code = 0;
    try {
      transport.listen(port);
    } catch (const std::system_error& error) {
      code = error.code().value();
    }
    close(kFew - 1);
    parent.report(code);
    parent.waitUntilReleased();
  });
  ASSERT_EQ(child.reported(), EMFILE);
  EXPECT_EQ(ask(port, kGetRoot), kGreetingAnswer);
  EXPECT_EQ(child.release(), 0);
}

TEST(HTTPTransportLimits, ThrowsNothingWhenThePortIsForbidden) {
  constexpr uid_t kNobody = 65534;
  constexpr std::uint16_t kPrivileged = 81;
  ForkedChild child([&](ForkedChild::Link& parent) {
    if (geteuid() == 0 && setuid(kNobody) != 0) return;
    serve(parent, kPrivileged);
  });
  const auto code = child.reported();
  EXPECT_EQ(child.release(), 0);
  if (code == 0) GTEST_SKIP() << "this system forbids no port";
  EXPECT_EQ(code, EACCES);
}

}  // namespace
}  // namespace tessum
