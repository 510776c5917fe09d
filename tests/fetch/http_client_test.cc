#include "core/fetch/http_client.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "core/fetch/fetch_parts.h"
#include "core/platform/descriptor.h"
#include "tests/support/child_process.h"
#include "tests/support/environment.h"
#include "tests/support/https_server.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/throw_away_authority.h"

namespace tessum {
namespace {

constexpr auto kPatience = std::chrono::minutes(1);

struct Result {
  HttpHead head;
  std::string body;
  std::optional<std::string> failure;
};

class HttpClientTest : public testing::Test {
 protected:
  HttpClientTest() { writeFile(folder_.file("authority.pem"), authority_.certificate()); }

  [[nodiscard]] FetchProgramClient::Settings settings() const {
    return {.program = TESSUM_FETCH_PROGRAM, .authoritiesFile = folder_.file("authority.pem")};
  }

  [[nodiscard]] std::unique_ptr<HttpsServer> serve(HttpsServer::Answer answer) const {
    return std::make_unique<HttpsServer>(authority_.issue("IP:127.0.0.1"), std::move(answer));
  }

  [[nodiscard]] static Result fetch(HttpClient& client, const std::string& url) {
    std::promise<Result> ended;
    auto body = std::make_shared<std::string>();
    const auto transfer = client.get(
        url, {.onData = [body](const HttpHead&, std::string_view bytes) { body->append(bytes); },
              .onEnd =
                  [&ended, body](const HttpHead& head, const std::optional<std::string>& failure) {
                    ended.set_value({head, *body, failure});
                  }});
    auto result = ended.get_future();
    if (result.wait_for(kPatience) != std::future_status::ready) return {{}, {}, "no end"};
    return result.get();
  }

  [[nodiscard]] Result fetch(const std::string& url) const {
    FetchProgramClient client(settings());
    return fetch(client, url);
  }

  // The end of a download of `url` into the file `path`, and the progress up to there.
  [[nodiscard]] std::pair<Result, std::vector<std::int64_t>> download(
      const std::string& url, const std::string& path) const {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    FetchProgramClient client(settings());
    std::promise<Result> ended;
    std::vector<std::int64_t> progress;
    const auto transfer =
        client.download(url, file.number(),
                        {.onProgress = [&](const HttpHead&,
                                           std::int64_t received) { progress.push_back(received); },
                         .onEnd =
                             [&](const HttpHead& head, const std::optional<std::string>& failure) {
                               ended.set_value({head, {}, failure});
                             }});
    auto result = ended.get_future();
    if (result.wait_for(kPatience) != std::future_status::ready) return {{{}, {}, "no end"}, {}};
    return {result.get(), progress};
  }

  const TemporaryFolder folder_;
  const ThrowAwayAuthority authority_;
  const ScopedVariable noProxy_{"no_proxy", "*"};
};

TEST_F(HttpClientTest, GivesTheBodyAndWhatIsKnownOfIt) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.respond("body", "Content-Disposition: attachment; filename=x\r\n");
  });
  const Result result = fetch(server->url() + "/a?b");
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "body");
  EXPECT_EQ(result.head.url, server->url() + "/a?b");
  EXPECT_EQ(result.head.contentDisposition, "attachment; filename=x");
  EXPECT_EQ(result.head.contentLength, 4);
}

TEST_F(HttpClientTest, KnowsNothingThatWasNotSaid) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.send(
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nbody\r\n"
        "0\r\nTrailer: x\r\n\r\n");
  });
  const Result result = fetch(server->url());
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "body");
  EXPECT_EQ(result.head.contentDisposition, std::nullopt);
  EXPECT_EQ(result.head.contentLength, std::nullopt);
}

TEST_F(HttpClientTest, GivesTheHeadOfAnEmptyAnswer) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.respond("", "Content-Disposition: inline\r\n", "404 Not Found");
  });
  const Result result = fetch(server->url());
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "");
  EXPECT_EQ(result.head.contentDisposition, "inline");
}

TEST_F(HttpClientTest, RunsTransfersAtTheSameTime) {
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
  FetchProgramClient client(settings());
  std::promise<std::string> first;
  const auto transfer =
      client.get(server->url() + "/first",
                 {.onData = [&](const HttpHead&,
                                std::string_view bytes) { first.set_value(std::string(bytes)); },
                  .onEnd = [](const HttpHead&, const std::optional<std::string>&) {}});
  EXPECT_EQ(fetch(client, server->url() + "/second").body, "second");
  EXPECT_EQ(first.get_future().get(), "first");
}

TEST_F(HttpClientTest, FollowsRedirects) {
  const auto target = serve([](HttpsConnection& connection) { connection.respond("there"); });
  const auto server = serve([&](HttpsConnection& connection) {
    connection.respond(
        "not here",
        "Content-Disposition: attachment; filename=no\r\nLocation: " + target->url() + "/x\r\n",
        "301 Moved Permanently");
  });
  const Result result = fetch(server->url());
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "there");
  EXPECT_EQ(result.head.url, target->url() + "/x");
  EXPECT_EQ(result.head.contentDisposition, std::nullopt);
}

TEST_F(HttpClientTest, DoesNotLeaveHttps) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.respond("", "Location: http://127.0.0.1:9/\r\n", "302 Found");
  });
  EXPECT_EQ(fetch(server->url()).failure, "Unsupported protocol");
  EXPECT_EQ(fetch("http://127.0.0.1:9/").failure, "Unsupported protocol");
  EXPECT_EQ(fetch("file:///etc/passwd").failure, "Unsupported protocol");
}

TEST_F(HttpClientTest, EndsACircleOfRedirects) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.respond("", "Location: /again\r\n", "302 Found");
  });
  EXPECT_EQ(fetch(server->url()).failure, "Number of redirects hit maximum amount");
  EXPECT_EQ(server->paths().size(), 21u);
}

TEST_F(HttpClientTest, ReportsAServerThatIsNotThere) {
  EXPECT_EQ(fetch(unreachableUrl()).failure, "Couldn't connect to server");
}

TEST_F(HttpClientTest, RefusesBadCertificates) {
  const auto answer = [](HttpsConnection& connection) { connection.respond("never"); };
  constexpr auto kRefusal = "SSL peer certificate or SSH remote key was not OK";
  const HttpsServer expired(authority_.issue("IP:127.0.0.1", 1), answer);
  EXPECT_EQ(fetch(expired.url()).failure, kRefusal);
  const HttpsServer ofAnother(authority_.issue("DNS:other.example"), answer);
  EXPECT_EQ(fetch(ofAnother.url()).failure, kRefusal);
  const HttpsServer unknown(ThrowAwayAuthority("Stranger").issue("IP:127.0.0.1"), answer);
  EXPECT_EQ(fetch(unknown.url()).failure, kRefusal);
  EXPECT_TRUE(expired.paths().empty() && ofAnother.paths().empty() && unknown.paths().empty());
}

TEST_F(HttpClientTest, TrustsTheSystemsAuthoritiesByDefault) {
  const auto server = serve([](HttpsConnection& connection) { connection.respond("never"); });
  FetchProgramClient client({.program = TESSUM_FETCH_PROGRAM});
  EXPECT_EQ(fetch(client, server->url()).failure,
            "SSL peer certificate or SSH remote key was not OK");
}

TEST_F(HttpClientTest, GivesUpOnAServerThatFallsSilent) {
  auto impatient = settings();
  impatient.idleSeconds = 0.3;
  const auto server = serve([](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.");
    connection.waitUntilClosed();
  });
  FetchProgramClient client(impatient);
  const Result result = fetch(client, server->url());
  EXPECT_EQ(result.failure, "Timeout was reached");
  EXPECT_EQ(result.body, "ten bytes.");
}

TEST_F(HttpClientTest, WaitsForAServerThatIsOnlySlow) {
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
  FetchProgramClient client(impatient);
  const Result result = fetch(client, server->url());
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.body, "............");
}

TEST_F(HttpClientTest, FailsInTheWordsOfWhoeverCannotTakeTheBody) {
  const auto server = serve([](HttpsConnection& connection) { connection.respond("body"); });
  FetchProgramClient client(settings());
  std::promise<std::optional<std::string>> ended;
  const auto transfer = client.get(
      server->url(),
      {.onData = [](const HttpHead&, std::string_view) { throw std::runtime_error("no room"); },
       .onEnd = [&](const HttpHead&,
                    const std::optional<std::string>& failure) { ended.set_value(failure); }});
  EXPECT_EQ(ended.get_future().get(), "no room");
}

TEST_F(HttpClientTest, DownloadsIntoAFile) {
  const std::string image(1'000'000, 'x');
  const auto server = serve([&](HttpsConnection& connection) { connection.respond(image); });
  const auto [result, progress] = download(server->url() + "/image", folder_.file("image"));
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_EQ(result.head.url, server->url() + "/image");
  EXPECT_EQ(result.head.contentLength, 1'000'000);
  EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
  ASSERT_FALSE(progress.empty());
  EXPECT_GT(progress.front(), 0);
  EXPECT_EQ(progress.back(), 1'000'000);
  EXPECT_EQ(readFile(folder_.file("image")), image);
}

TEST_F(HttpClientTest, DownloadsAnEmptyFileWithoutProgress) {
  const auto server = serve([](HttpsConnection& connection) { connection.respond(""); });
  const auto [result, progress] = download(server->url(), folder_.file("image"));
  EXPECT_EQ(result.failure, std::nullopt);
  EXPECT_TRUE(progress.empty());
}

TEST_F(HttpClientTest, SaysWhyAFileCannotBeWritten) {
  if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "there is no file without room";
  const std::string failure = "Cannot write the file: No space left on device";
  const auto small = serve([](HttpsConnection& connection) { connection.respond("body"); });
  const auto [result, progress] = download(small->url(), "/dev/full");
  EXPECT_EQ(result.failure, failure);
  EXPECT_TRUE(progress.empty()) << "nothing was written";
  const auto endless = serve([](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
    while (connection.send(std::string(100'000, 'x'))) {
    }
  });
  EXPECT_EQ(download(endless->url(), "/dev/full").first.failure, failure);
}

TEST_F(HttpClientTest, SaysNothingOfATransferThatWasLetGo) {
  std::promise<void> isAsked;
  const auto server = serve([&](HttpsConnection& connection) {
    isAsked.set_value();
    connection.waitUntilClosed();
    connection.respond("too late");
  });
  FetchProgramClient client(settings());
  const auto held = std::make_shared<int>();
  auto transfer =
      client.get(server->url(),
                 {.onData = [held](const HttpHead&, std::string_view) { FAIL(); },
                  .onEnd = [held](const HttpHead&, const std::optional<std::string>&) { FAIL(); }});
  isAsked.get_future().wait();
  EXPECT_EQ(held.use_count(), 3);
  transfer.reset();
  EXPECT_EQ(held.use_count(), 1) << "what the events hold is let go at once";
}

TEST_F(HttpClientTest, LeavesAConnectionThatIsNoLongerWanted) {
  std::promise<void> isAsked;
  std::promise<void> isClosed;
  const auto server = serve([&](HttpsConnection& connection) {
    isAsked.set_value();
    connection.waitUntilClosed();
    isClosed.set_value();
  });
  FetchProgramClient client(settings());
  auto transfer = client.get(server->url(),
                             {.onData = [](const HttpHead&, std::string_view) {},
                              .onEnd = [](const HttpHead&, const std::optional<std::string>&) {}});
  isAsked.get_future().wait();
  transfer.reset();
  EXPECT_EQ(isClosed.get_future().wait_for(kPatience), std::future_status::ready);
}

TEST_F(HttpClientTest, LeavesNoProcessBehind) {
  const auto server = serve([](HttpsConnection& connection) { connection.respond("body"); });
  EXPECT_EQ(fetch(server->url()).failure, std::nullopt);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(HttpClientTest, SaysThatTheProgramCannotBeStarted) {
  FetchProgramClient client({.program = folder_.file("gone")});
  EXPECT_EQ(fetch(client, "https://127.0.0.1/").failure,
            "Cannot start " + folder_.file("gone") + ": No such file or directory");
}

// A stand-in that breaks off, or that writes what the program never does.
TEST_F(HttpClientTest, FailsWhenTheProgramGoesWrong) {
  const auto part = [](FetchPart kind, std::uint32_t size, const std::string& content) {
    const FetchPartHeader header{kind, size};
    return std::string(reinterpret_cast<const char*>(&header), sizeof header) + content;
  };
  const std::string success = part(FetchPart::success, 0, "");
  const std::string tooMuch = std::to_string(kLargestFetchPart + 1);
  const std::string outputs[] = {
      "",
      "abc",
      part(FetchPart::url, 4, "htt"),
      part(FetchPart::url, kLargestFetchPart + 1, std::string(kLargestFetchPart + 1, 'x')),
      part(FetchPart::contentLength, 2, "4x") + success,
      part(FetchPart::contentLength, 2, "-1") + success,
      part(FetchPart::contentLength, 0, "") + success,
      part(FetchPart::contentLength, 19, "9223372036854775808") + success,
      part(FetchPart::body, 1, "4"),
      part(FetchPart::body, 1, "5") + success,  // there are four
      part(FetchPart::body, static_cast<std::uint32_t>(tooMuch.size()), tooMuch) + success,
      part(static_cast<FetchPart>(99), 0, "") + success,
  };
  writeFile(folder_.file("program"),
            "#!/bin/sh\nprintf body\ncat " + folder_.file("output") + " >&2\n");
  chmod(folder_.file("program").c_str(), 0700);
  FetchProgramClient client({.program = folder_.file("program")});
  for (const std::string& output : outputs) {
    writeFile(folder_.file("output"), output);
    EXPECT_EQ(fetch(client, "https://127.0.0.1/").failure, "TessumFetch ended unexpectedly")
        << output.size() << " bytes: " << output.substr(0, 40);
  }
}

TEST_F(HttpClientTest, ProgramEndsWhenNobodyReadsItAnyMore) {
  std::promise<void> isAsked;
  const auto server = serve([&](HttpsConnection& connection) {
    isAsked.set_value();
    connection.waitUntilClosed();
  });
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ChildProcess program(
      TESSUM_FETCH_PROGRAM,
      {.arguments = {server->url(), "3600", folder_.file("authority.pem")}, .prepare = [&ends] {
         dup2(ends[1], STDERR_FILENO);
         close(ends[0]);
         close(ends[1]);
       }});
  close(ends[1]);
  isAsked.get_future().wait();
  close(ends[0]);
  program.wait();
}

TEST_F(HttpClientTest, ProgramRefusesOtherArguments) {
  ChildProcess program(TESSUM_FETCH_PROGRAM);
  EXPECT_EQ(program.finish().code, 2);
  EXPECT_EQ(program.errors(), "usage: TessumFetch URL IDLE-SECONDS [AUTHORITIES-FILE]\n");
}

}  // namespace
}  // namespace tessum
