// A recording beside an endpoint that gets requests of every kind and many idle connections.

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <future>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/desktop/recording/recorder.h"
#include "tests/http/loopback.h"
#include "tests/support/desktop/x11_desktop.h"
#include "tests/support/eventually.h"

namespace tessum {
namespace {

constexpr std::uint16_t kPort = 7384;
constexpr int kRequests = 2000;
constexpr int kHalfOpen = 1000;
constexpr int kChangesUnderFire = 60;

std::string requestOf(const std::string& body) {
  return "POST /mcp HTTP/1.1\r\nHost: localhost:" + std::to_string(kPort) +
         "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string callOf(const std::string& tool, const std::string& arguments) {
  return requestOf(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":")" + tool +
                   R"(","arguments":)" + arguments + "}}");
}

// More rows than SQLite can be asked for, which stops the engine.
const std::string kStopper = callOf("get_activities", R"({"limit":2147483648})");

class Attacker {
 public:
  // Opens connections that send half a request, then sends request after request.
  void run() {
    for (int i = 0; i < kHalfOpen; ++i) {
      halfOpen_.push_back(connect());
      halfOpen_.back().send(requestOf("{}").substr(0, upTo(40)));
    }
    for (int i = 0; i < kRequests; ++i) {
      Peer peer = connect();
      const bool isStopper = i == kRequests / 4 || i == kRequests / 2;
      peer.send(isStopper ? kStopper : randomRequest());
      peer.endSending();
      if (peer.receiveAll().starts_with("HTTP/1.1 200 OK")) ++answered_;
    }
  }

  [[nodiscard]] int answered() const { return answered_; }

 private:
  // The endpoint may be about to be started again.
  static Peer connect() {
    std::vector<Peer> peers;
    const auto tries = [&] {
      if (auto peer = Peer::tryConnect(kPort)) peers.push_back(std::move(*peer));
      return !peers.empty();
    };
    if (!eventually(tries)) throw std::runtime_error("the endpoint has not come back");
    return std::move(peers.front());
  }

  std::size_t upTo(std::size_t most) {
    return std::uniform_int_distribution<std::size_t>(0, most)(random_);
  }
  char anyByte() { return static_cast<char>(upTo(255)); }

  std::string randomRequest() {
    const std::string requests[] = {callOf("get_activities", "{}"), callOf("get_app_usage", "{}"),
                                    callOf("search_activities", R"({"query":"%"})"),
                                    requestOf(R"({"jsonrpc":"2.0","id":1,"method":"tools/list"})")};
    std::string request = requests[upTo(3)];
    switch (upTo(3)) {
      case 0:
        return request;
      case 1:
        for (std::size_t i = upTo(5); i > 0; --i) request[upTo(request.size() - 1)] = anyByte();
        return request;
      case 2:
        return request.substr(0, upTo(request.size()));
      default:
        break;
    }
    request.resize(upTo(500));
    for (char& byte : request) byte = anyByte();
    return request;
  }

  std::mt19937 random_{17};
  std::vector<Peer> halfOpen_;
  int answered_ = 0;
};

TEST(RecordHTTPUnderFire, LosesNothingAndAnswersOn) {
  allowDescriptors(kHalfOpen + 200);
  if (isListening(kPort)) GTEST_SKIP() << "another program has the port";
  Desktop desktop;
  desktop.startWindowManager();
  const xcb_window_t windows[] = {desktop.addWindow("Even"), desktop.addWindow("Odd")};
  Recorder recorder(desktop, {"--http"});
  ASSERT_TRUE(recorder.comesTo({"Odd|NULL|NULL|open"}));

  Attacker attacker;
  auto attack = std::async(std::launch::async, [&] { attacker.run(); });
  const auto isOver = [&] {
    return attack.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  };
  Recorder::Rows expected{"Odd|NULL|NULL|closed"};
  for (int i = 0; i < kChangesUnderFire || !isOver(); ++i) {
    desktop.activate(windows[i % 2]);
    expected.push_back(i % 2 == 0 ? "Even|NULL|NULL|closed" : "Odd|NULL|NULL|closed");
    EXPECT_TRUE(eventually([&] { return recorder.sessions().size() == expected.size(); })) << i;
    if (HasFailure()) break;
  }
  attack.get();
  expected.back().replace(expected.back().size() - 6, 6, "open");
  EXPECT_TRUE(recorder.comesTo(expected));
  EXPECT_GT(attacker.answered(), kRequests / 8);
  EXPECT_NE(ask(kPort, callOf("get_activities", "{}")).find("Even"), std::string::npos);
  recorder.process().kill(SIGTERM);
  EXPECT_EQ(recorder.process().wait(), kSuccess);
}

}  // namespace
}  // namespace tessum
