// Successful transfers, and transfers that end early.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <future>

#include "tests/fetch/http_client_fixture.h"
#include "tests/support/child_process.h"
#include "tests/support/fakes/fake_main_loop.h"

namespace tessum {
namespace {

constexpr auto kPatience = std::chrono::minutes(1);

using TransferTest = HttpClientTest;

TEST_F(TransferTest, GivesTheBodyAndWhatIsKnownOfIt) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.respond("body", "Content-Disposition: attachment; filename=x\r\n");
  });
  const HttpResult result = fetch(server->url() + "/a?b");
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "body");
  EXPECT_EQ(result.head.url, server->url() + "/a?b");
  EXPECT_EQ(result.head.contentDisposition, "attachment; filename=x");
  EXPECT_EQ(result.head.contentLength, 4);
}

TEST_F(TransferTest, KnowsNothingThatWasNotSaid) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.send(
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nbody\r\n"
        "0\r\nTrailer: x\r\n\r\n");
  });
  const HttpResult result = fetch(server->url());
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "body");
  EXPECT_EQ(result.head.contentDisposition, std::nullopt);
  EXPECT_EQ(result.head.contentLength, std::nullopt);
}

TEST_F(TransferTest, GivesTheHeadOfAnEmptyAnswer) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.respond("", "Content-Disposition: inline\r\n", "404 Not Found");
  });
  const HttpResult result = fetch(server->url());
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "");
  EXPECT_EQ(result.head.contentDisposition, "inline");
}

TEST_F(TransferTest, AsksForThePathAsItIs) {
  const auto server = serve([](HttpsConnection& connection) { connection.respond("body"); });
  for (const char* path : {"/v1/../assets/./x", "/..", "/a//b/", "/%2e%2E/"}) {
    EXPECT_EQ(fetch(server->url() + path).failure, std::nullopt);
    EXPECT_EQ(server->paths().back(), path);
  }
}

TEST_F(TransferTest, TakesABodyOfTheLargestSize) {
  const std::string body(kMostBytes, 'x');
  const auto server = serve([&](HttpsConnection& connection) { connection.respond(body); });
  const HttpResult result = fetch(server->url());
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, body);
}

TEST_F(TransferTest, RunsBesideOthers) {
  std::promise<void> isSecondServed;
  const auto server = serve([&](HttpsConnection& connection) {
    if (connection.request().starts_with("GET /second")) {
      connection.respond("second");
      isSecondServed.set_value();
      return;
    }
    isSecondServed.get_future().wait_for(kPatience);
    connection.respond("first");
  });
  FetchProgramClient client(loop_, settings());
  std::string first;
  const auto transfer = client.get(server->url() + "/first", kMostBytes,
                                   [&](const HttpResult& result) { first = result.body; });
  EXPECT_EQ(fetch(client, server->url() + "/second").body, "second");
  EXPECT_TRUE(runUntil([&] { return first == "first"; }));
}

TEST_F(TransferTest, FollowsRedirects) {
  const auto target = serve([](HttpsConnection& connection) { connection.respond("there"); });
  const auto server = serve([&](HttpsConnection& connection) {
    connection.respond(
        "not here",
        "Content-Disposition: attachment; filename=no\r\nLocation: " + target->url() + "/x\r\n",
        "301 Moved Permanently");
  });
  const HttpResult result = fetch(server->url());
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "there");
  EXPECT_EQ(result.head.url, target->url() + "/x");
  EXPECT_EQ(result.head.contentDisposition, std::nullopt);
}

TEST_F(TransferTest, WaitsForAServerThatIsOnlySlow) {
  auto impatient = settings();
  impatient.idleSeconds = 2;
  const auto server = serve([](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 12\r\n\r\n");
    // A pause here is the behaviour under test: a byte now and then, longer than the limit in all.
    for (int i = 0; i < 12; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      connection.send(".");
    }
  });
  FetchProgramClient client(loop_, impatient);
  const HttpResult result = fetch(client, server->url());
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "............");
}

TEST_F(TransferTest, GoesIntoAFile) {
  const std::string image(1'000'000, 'x');
  const auto server = serve([&](HttpsConnection& connection) { connection.respond(image); });
  const auto [result, progress] = download(server->url() + "/image", folder_.file("image"));
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "");
  EXPECT_EQ(result.head.url, server->url() + "/image");
  EXPECT_EQ(result.head.contentLength, 1'000'000);
  EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
  ASSERT_FALSE(progress.empty());
  EXPECT_GT(progress.front(), 0);
  EXPECT_EQ(progress.back(), 1'000'000);
  EXPECT_EQ(readFile(folder_.file("image")), image);
}

TEST_F(TransferTest, MakesAnEmptyFileWithoutProgress) {
  const auto server = serve([](HttpsConnection& connection) { connection.respond(""); });
  const auto [result, progress] = download(server->url(), folder_.file("image"));
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_TRUE(progress.empty());
}

TEST_F(TransferTest, CallsBackOnlyFromTheLoop) {
  FetchProgramClient client(loop_, {.program = folder_.file("gone")});
  bool hasEnded = false;
  const auto transfer =
      client.get("https://127.0.0.1/", kMostBytes, [&](const HttpResult&) { hasEnded = true; });
  EXPECT_FALSE(hasEnded);
  EXPECT_TRUE(runUntil([&] { return hasEnded; }));
}

TEST_F(TransferTest, CanBeDestroyedByItsOwnEnd) {
  const auto server = serve([](HttpsConnection& connection) { connection.respond("body"); });
  FetchProgramClient client(loop_, settings());
  std::unique_ptr<HttpTransfer> transfer;
  std::string body;
  transfer = client.get(server->url(), kMostBytes, [&](const HttpResult& result) {
    transfer.reset();
    body = result.body;
  });
  EXPECT_TRUE(runUntil([&] { return transfer == nullptr; }));
  EXPECT_EQ(body, "body");
}

TEST_F(TransferTest, IsSilentOnceDestroyed) {
  std::promise<void> isAsked;
  const auto server = serve([&](HttpsConnection& connection) {
    isAsked.set_value();
    connection.waitUntilClosed();
  });
  FetchProgramClient client(loop_, settings());
  const auto held = std::make_shared<int>();
  auto transfer =
      client.get(server->url(), kMostBytes, [held](const HttpResult&) { ADD_FAILURE(); });
  isAsked.get_future().wait();
  EXPECT_EQ(held.use_count(), 2);
  transfer.reset();
  EXPECT_EQ(held.use_count(), 1) << "what the callback holds is let go at once";
}

TEST_F(TransferTest, IsSilentOnceDestroyedBeforeItCouldStart) {
  FetchProgramClient client(loop_, {.program = folder_.file("gone")});
  auto transfer =
      client.get("https://127.0.0.1/", kMostBytes, [](const HttpResult&) { ADD_FAILURE(); });
  transfer.reset();
  bool isLater = false;
  loop_.post([&] { isLater = true; });
  EXPECT_TRUE(runUntil([&] { return isLater; }));
}

TEST_F(TransferTest, LeavesAConnectionThatIsNoLongerWanted) {
  std::promise<void> isAsked;
  std::promise<void> isClosed;
  const auto server = serve([&](HttpsConnection& connection) {
    isAsked.set_value();
    connection.waitUntilClosed();
    isClosed.set_value();
  });
  FetchProgramClient client(loop_, settings());
  auto transfer = client.get(server->url(), kMostBytes, [](const HttpResult&) {});
  isAsked.get_future().wait();
  transfer.reset();
  EXPECT_EQ(isClosed.get_future().wait_for(kPatience), std::future_status::ready);
}

TEST_F(TransferTest, LeavesNoProcessBehind) {
  const auto server = serve([](HttpsConnection& connection) { connection.respond("body"); });
  EXPECT_EQ(fetch(server->url()).failure, std::nullopt);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

// A fake clock and a real process.
class TransferLimits : public HttpClientTest {
 protected:
  TransferLimits() {
    writeFile(folder_.file("program"), "#!/bin/sh\nexec sleep 1000\n");
    chmod(folder_.file("program").c_str(), 0700);
  }

  FakeClock clock_;
  FakeMainLoop fakeLoop_{clock_};
  FetchProgramClient client_{fakeLoop_, {.program = folder_.file("program")}};
  std::optional<HttpResult> ended_;
  const HttpClient::OnEnd onEnd_ = [this](HttpResult result) { ended_ = std::move(result); };
};

TEST_F(TransferLimits, EndABodyInMemoryAfterAnHour) {
  const auto transfer = client_.get("https://127.0.0.1/", kMostBytes, onEnd_);
  fakeLoop_.advance(3599);
  EXPECT_FALSE(ended_.has_value());
  fakeLoop_.advance(1);
  ASSERT_TRUE(ended_.has_value());
  EXPECT_EQ(ended_->failure, "The transfer took too long");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "the process has ended";
  EXPECT_TRUE(fakeLoop_.timerIntervals().empty());
}

TEST_F(TransferLimits, EndAFileAfterADay) {
  const auto transfer = client_.download(
      "https://127.0.0.1/", STDOUT_FILENO, [](const HttpHead&, std::int64_t) {}, onEnd_);
  fakeLoop_.advance(86399);
  EXPECT_FALSE(ended_.has_value());
  fakeLoop_.advance(1);
  ASSERT_TRUE(ended_.has_value());
  EXPECT_EQ(ended_->failure, "The transfer took too long");
}

}  // namespace
}  // namespace tessum
