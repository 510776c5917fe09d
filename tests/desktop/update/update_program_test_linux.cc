// "Tessum update": the program of this build, and the same with a release service. A proxy maps the
// built-in addresses to a server on the loopback interface, and private mounts make the system
// trust that server's authority.

#include <curl/curl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "core/update/urls.h"
#include "tests/desktop/user.h"
#include "tests/support/child_process.h"
#include "tests/support/desktop/x11_desktop.h"
#include "tests/support/eventually.h"
#include "tests/support/https/https_server.h"
#include "tests/support/mounts_linux.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

constexpr const char* kServices[] = {TESSUM_UPDATE_PRIMARY_URL, TESSUM_UPDATE_FALLBACK_URL};
constexpr auto kLatest = "/releases/macos/latest";
constexpr auto kRelease =
    R"({"tag":"v99.1","name":"Tessum","body":"","prerelease":false,"publishedAt":"2025-03-04",)"
    R"("assets":[{"name":"Setup.dmg","size":1,"contentType":""}]})";

constexpr auto kInstruction =
    "Get its package where this one came from, or make it from the sources; docs/PACKAGES.md says "
    "how.\n";

constexpr int kNoViewOfItsOwn = 77;

std::string hostOf(const std::string& url) {
  const std::string host = url.substr(std::string("https://").size());
  return host.substr(0, host.find_first_of(":/"));
}

std::string pathOf(const HttpsConnection& connection) {
  const std::string& request = connection.request();
  const auto start = request.find(' ') + 1;
  return request.substr(start, request.find(' ', start) - start);
}

// Answers with the description of the release, or with `image` when its file is requested.
HttpsServer::Answer offering(HttpsServer::Answer image) {
  return [image = std::move(image)](HttpsConnection& connection) {
    if (pathOf(connection) == kLatest) {
      connection.respond(kRelease);
    } else {
      image(connection);
    }
  };
}

HttpsServer::Answer answering(std::string body) {
  return [body = std::move(body)](HttpsConnection& connection) { connection.respond(body); };
}

class UpdateProgram : public testing::Test {
 protected:
  UpdateProgram() {
    for (const char* url : kServices) {
      names_ += (names_.empty() ? "DNS:" : ",DNS:") + hostOf(url);
    }
    const fs::path trusted = curl_version_info(CURLVERSION_NOW)->cainfo;
    systemFolder_ = trusted.parent_path();
    fs::create_directory(user_.file("trusted"));
    writeFile(user_.file("trusted/") + trusted.filename().string(), authority_.certificate());

    fs::create_directory(user_.file("bin"));
    writeFile(user_.file("bin/xdg-open"),
              "#!/bin/sh\necho \"$1\" > \"$HOME/opened.new\"\n"
              "mv \"$HOME/opened.new\" \"$HOME/opened\"\n");
    chmod(user_.file("bin/xdg-open").c_str(), 0700);
    user_.set("PATH", user_.file("bin") + ":" + std::getenv("PATH"));
    keepProxy(user_);
  }

  // Has no host of `user` reached without the proxy.
  static void keepProxy(User& user) {
    for (const char* name : {"no_proxy", "NO_PROXY"}) user.set(name, "nobody.invalid");
  }

  void SetUp() override {
    ChildProcess probe("true", {.prepare = [this] { trustAuthority(); }});
    if (probe.finish() != kSuccess) GTEST_SKIP() << "no view of the file system of its own";
  }

  void serve(HttpsServer::Answer answer) {
    server_ = std::make_unique<HttpsServer>(authority_.issue(names_), std::move(answer));
    user_.set("https_proxy", server_->proxyUrl());
  }

  // Runs in the child, before the program.
  void trustAuthority() const {
    if (!takeOwnMounts() || !mountFolder(trustedFolder_, systemFolder_)) _exit(kNoViewOfItsOwn);
  }

  [[nodiscard]] Outcome run(const std::vector<std::string>& arguments) const {
    return runAfter([this] { trustAuthority(); }, arguments);
  }

  // `prepare` runs in the child, before the program.
  [[nodiscard]] Outcome runAfter(const std::function<void()>& prepare,
                                 const std::vector<std::string>& arguments) const {
    ChildProcess program(
        TESSUM_PROGRAM,
        {.arguments = arguments, .environment = user_.environment(), .prepare = prepare});
    return outcomeOf(program);
  }

  [[nodiscard]] std::string announcement() const {
    return "Tessum 99.1 is available; this is " TESSUM_VERSION ".\n";
  }

  User user_;
  const ThrowAwayAuthority authority_;
  std::string names_;
  std::string systemFolder_;
  const std::string trustedFolder_ = user_.file("trusted");
  std::unique_ptr<HttpsServer> server_;
};

TEST_F(UpdateProgram, SaysThatItIsUpToDate) {
  serve(answering(R"({"tag":"v)" TESSUM_VERSION
                  R"(","name":"","body":"","prerelease":false,"publishedAt":""})"));
  const Outcome outcome = run({"update"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "Tessum " TESSUM_VERSION " is up to date.\n");
  EXPECT_EQ(outcome.errors, "");
  EXPECT_FALSE(fs::exists(user_.dataFolder())) << "nothing was to be stored";
}

TEST_F(UpdateProgram, SaysWhatIsAvailableAndWherePackagesComeFrom) {
  serve(offering(answering("image")));
  const Outcome outcome = run({"update"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, announcement() + kInstruction);
  EXPECT_EQ(server_->paths(), std::vector<std::string>{kLatest});
}

TEST_F(UpdateProgram, NeverDownloadsADiskImage) {
  serve(offering(answering("image")));
  const Outcome outcome = run({"update", "--download"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, announcement());
  EXPECT_EQ(outcome.errors,
            std::string("Tessum: Releases are not downloaded on this system. ") + kInstruction);
  EXPECT_EQ(server_->paths(), std::vector<std::string>{kLatest});
  EXPECT_FALSE(fs::exists(user_.dataFolder())) << "nothing was to be stored";
  EXPECT_FALSE(fs::exists(user_.file("opened")));
}

TEST(UpdateProgramWithoutAService, SaysSoAndAsksNobody) {
  if (!configuredBaseUrls().empty()) GTEST_SKIP() << "this build has a release service";
  User user;
  user.set("https_proxy", "http://127.0.0.1:9");  // where a request would fail otherwise
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"update"}, {"update", "--download"}}) {
    const Outcome outcome = user.run(words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "Tessum: this copy was built without a release service, so it never looks for newer "
              "versions\n");
  }
}

TEST_F(UpdateProgram, IsAskedByARecorderButNotByOneWithoutAService) {
  if (!configuredBaseUrls().empty()) GTEST_SKIP() << "this build has a release service";
  const Desktop desktop;
  serve(answering(kRelease));
  const HttpsServer unasked(authority_.issue(names_), answering(kRelease));
  const auto start = [&](const std::string& program, User& user, const HttpsServer& server) {
    user.set("DISPLAY", desktop.display());
    user.set("https_proxy", server.proxyUrl());
    keepProxy(user);
    return ChildProcess(program, {.arguments = {"record"},
                                  .environment = user.environment(),
                                  .prepare = [this] { trustAuthority(); }});
  };
  User other;
  ChildProcess recorder = start(hostProgram(), other, unasked);
  ASSERT_TRUE(eventually([&] { return bool(contains(other.run({"status"}).output, "  yes, ")); }));
  ChildProcess asking = start(TESSUM_PROGRAM, user_, *server_);
  EXPECT_TRUE(eventually([&] { return !server_->paths().empty(); }));
  recorder.kill(SIGTERM);
  EXPECT_EQ(recorder.wait(), kSuccess);
  EXPECT_EQ(unasked.paths(), std::vector<std::string>());
}

TEST_F(UpdateProgram, AsksTheSecondServiceWhenTheFirstFails) {
  const std::string first = "Host: " + hostOf(kServices[0]);
  serve([first](HttpsConnection& connection) {
    if (connection.request().find(first + "\r\n") != std::string::npos) return connection.cut();
    connection.respond(kRelease);
  });
  const Outcome outcome = run({"update"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(outcome.output.starts_with(announcement())) << outcome.output;
  EXPECT_EQ(server_->paths(), (std::vector<std::string>{kLatest, kLatest}));
}

TEST_F(UpdateProgram, FailsWhenNobodyAnswers) {
  serve([](HttpsConnection& connection) { connection.cut(); });
  const Outcome outcome = run({"update"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_TRUE(outcome.errors.starts_with("Tessum: ")) << outcome.errors;
}

TEST_F(UpdateProgram, FailsWhenTheSystemDoesNotTrustTheServer) {
  serve(offering(answering("image")));
  const Outcome outcome = runAfter([] {}, {"update"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            std::string("Tessum: ") + curl_easy_strerror(CURLE_PEER_FAILED_VERIFICATION) + "\n");
  EXPECT_EQ(server_->paths(), std::vector<std::string>());
}

}  // namespace
}  // namespace tessum
