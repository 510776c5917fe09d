// Transfers that fail, and their messages.

#include <curl/curl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "core/fetch/fetch_parts.h"
#include "tests/fetch/http_client_fixture.h"

namespace tessum {
namespace {

using FailureTest = HttpClientTest;

TEST_F(FailureTest, DoesNotLeaveHttps) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.respond("", "Location: http://127.0.0.1:9/\r\n", "302 Found");
  });
  const char* const refusal = curl_easy_strerror(CURLE_UNSUPPORTED_PROTOCOL);
  EXPECT_EQ(fetch(server->url()).failure, refusal);
  EXPECT_EQ(fetch("http://127.0.0.1:9/").failure, refusal);
  EXPECT_EQ(fetch("file:///etc/passwd").failure, refusal);
}

TEST_F(FailureTest, EndsACircleOfRedirects) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.respond("", "Location: /again\r\n", "302 Found");
  });
  EXPECT_EQ(fetch(server->url()).failure, curl_easy_strerror(CURLE_TOO_MANY_REDIRECTS));
  EXPECT_EQ(server->paths().size(), 21u);
}

TEST_F(FailureTest, ReportsAServerThatIsNotThere) {
  EXPECT_EQ(fetch(unreachableUrl()).failure, curl_easy_strerror(CURLE_COULDNT_CONNECT));
}

TEST_F(FailureTest, RefusesBadCertificates) {
  const auto answer = [](HttpsConnection& connection) { connection.respond("never"); };
  const char* const refusal = curl_easy_strerror(CURLE_PEER_FAILED_VERIFICATION);
  const HttpsServer expired(authority_.issue("IP:127.0.0.1", 1), answer);
  EXPECT_EQ(fetch(expired.url()).failure, refusal);
  const HttpsServer ofAnother(authority_.issue("DNS:other.example"), answer);
  EXPECT_EQ(fetch(ofAnother.url()).failure, refusal);
  const HttpsServer unknown(ThrowAwayAuthority("Stranger").issue("IP:127.0.0.1"), answer);
  EXPECT_EQ(fetch(unknown.url()).failure, refusal);
  EXPECT_TRUE(expired.paths().empty() && ofAnother.paths().empty() && unknown.paths().empty());
}

TEST_F(FailureTest, TrustsTheSystemsAuthoritiesByDefault) {
  const auto server = serve([](HttpsConnection& connection) { connection.respond("never"); });
  FetchProgramClient client(loop_, {.program = TESSUM_FETCH_PROGRAM});
  EXPECT_EQ(fetch(client, server->url()).failure,
            curl_easy_strerror(CURLE_PEER_FAILED_VERIFICATION));
}

TEST_F(FailureTest, GivesUpOnAServerThatFallsSilent) {
  auto impatient = settings();
  impatient.idleSeconds = 0.3;
  const auto server = serve([](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.");
    connection.waitUntilClosed();
  });
  FetchProgramClient client(loop_, impatient);
  const HttpResult result = fetch(client, server->url());
  EXPECT_EQ(result.failure, curl_easy_strerror(CURLE_OPERATION_TIMEDOUT));
  EXPECT_EQ(result.body, "ten bytes.");
}

TEST_F(FailureTest, GivesUpOnABodyThatIsTooLong) {
  const std::string failure = "The answer is longer than 100000 bytes";
  const auto byOne = serve(
      [](HttpsConnection& connection) { connection.respond(std::string(kMostBytes + 1, 'x')); });
  EXPECT_EQ(fetch(byOne->url()).failure, failure);
  const auto endless = serve([](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
    while (connection.send(std::string(kMostBytes, 'x'))) {
    }
  });
  EXPECT_EQ(fetch(endless->url()).failure, failure);
}

TEST_F(FailureTest, SaysWhyAFileCannotBeWritten) {
  if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "there is no file without room";
  const std::string failure = std::string("Cannot write the file: ") + std::strerror(ENOSPC);
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

TEST_F(FailureTest, SaysThatTheProgramCannotBeStarted) {
  FetchProgramClient client(loop_, {.program = folder_.file("gone")});
  EXPECT_EQ(fetch(client, "https://127.0.0.1/").failure,
            "Cannot start " + folder_.file("gone") + ": " + std::strerror(ENOENT));
}

// A program of that name in the working folder or in PATH must not be used.
TEST_F(FailureTest, DoesNotLookForTheProgram) {
  writeFile(folder_.file("TessumFetch"), "#!/bin/sh\ntouch started\n");
  chmod(folder_.file("TessumFetch").c_str(), 0700);
  const ScopedVariable path("PATH", (folder_.path() + ":" + std::getenv("PATH")).c_str());
  const std::string before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path());
  for (const char* program : {"", "TessumFetch", "./TessumFetch"}) {
    FetchProgramClient client(loop_, {.program = program});
    EXPECT_EQ(fetch(client, "https://127.0.0.1/").failure, "TessumFetch cannot be found");
  }
  std::filesystem::current_path(before);
  EXPECT_FALSE(std::filesystem::exists(folder_.file("started")));
}

using FailureDeathTest = FailureTest;

// In a child, which uses up its descriptors.
TEST_F(FailureDeathTest, SurvivesAMomentWithoutDescriptors) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto fetchWithoutDescriptors = [this] {
    FetchProgramClient client(loop_, settings());
    const rlimit few{64, 64};
    if (setrlimit(RLIMIT_NOFILE, &few) != 0) return 2;
    while (dup(STDOUT_FILENO) != -1) {
    }
    const auto failure = fetch(client, "https://127.0.0.1/").failure.value_or("");
    return failure == std::string("Cannot make a pipe: ") + std::strerror(EMFILE) ? 0 : 1;
  };
  EXPECT_EXIT(std::_Exit(fetchWithoutDescriptors()), testing::ExitedWithCode(0), "");
}

class WrongProgram : public HttpClientTest {
 protected:
  static constexpr auto kEndedEarly = "TessumFetch ended unexpectedly";
  static constexpr auto kUnexpected = "TessumFetch sent something unexpected";

  [[nodiscard]] static std::string part(FetchPart kind, std::uint32_t size,
                                        const std::string& content) {
    const FetchPartHeader header{kind, size};
    return std::string(reinterpret_cast<const char*>(&header), sizeof header) + content;
  }

  // A client over a fake program that writes `output`.
  [[nodiscard]] FetchProgramClient clientOf(const std::string& output) {
    writeFile(folder_.file("output"), output);
    writeFile(folder_.file("program"), "#!/bin/sh\ncat " + folder_.file("output") + " >&2\n");
    chmod(folder_.file("program").c_str(), 0700);
    return FetchProgramClient(loop_, {.program = folder_.file("program")});
  }

  const std::string success_ = part(FetchPart::success, 0, "");
};

TEST_F(WrongProgram, FailsWhenItBreaksOff) {
  for (const std::string& output :
       {std::string(), std::string("abc"), part(FetchPart::url, 4, "htt"),
        part(FetchPart::body, 4, "bod"), part(FetchPart::body, 4, "body"),
        part(FetchPart::body, 5, "body") + success_}) {  // a byte of success_ ends the body
    FetchProgramClient client = clientOf(output);
    EXPECT_EQ(fetch(client, "https://127.0.0.1/").failure, kEndedEarly) << output;
  }
}

TEST_F(WrongProgram, FailsWhenItSendsWhatIsNoPart) {
  constexpr auto kTooMuch = static_cast<std::uint32_t>(kLargestFetchPart) + 1;
  for (const std::string& output :
       {part(FetchPart::url, kTooMuch, std::string(kTooMuch, 'x')) + success_,
        part(FetchPart::body, kTooMuch, std::string(kTooMuch, 'x')) + success_,
        part(FetchPart::body, UINT32_MAX, "") + part(FetchPart::body, UINT32_MAX, "") + success_,
        part(FetchPart::contentLength, 2, "4x") + success_,
        part(FetchPart::contentLength, 2, "-1") + success_,
        part(FetchPart::contentLength, 0, "") + success_,
        part(FetchPart::contentLength, 19, "9223372036854775808") + success_,
        part(static_cast<FetchPart>(99), 0, "") + success_}) {
    FetchProgramClient client = clientOf(output);
    EXPECT_EQ(fetch(client, "https://127.0.0.1/").failure, kUnexpected) << output.size();
    EXPECT_EQ(download(client, "https://127.0.0.1/", folder_.file("image")).first.failure,
              kUnexpected)
        << output.size();
  }
}

TEST_F(WrongProgram, IsBelievedWhenItSaysWhy) {
  FetchProgramClient client = clientOf(part(FetchPart::failure, 3, std::string("a\0b", 3)));
  EXPECT_EQ(fetch(client, "https://127.0.0.1/").failure, std::string("a\0b", 3));
}

}  // namespace
}  // namespace tessum
