// An update checker with a real HTTP client and real servers around it.

#pragma once

#include <curl/curl.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/fetch/fetch_program_client.h"
#include "core/update/update_checker.h"
#include "tests/support/fakes/fake_clock.h"
#include "tests/support/fakes/fake_main_loop.h"
#include "tests/support/https/https_server.h"
#include "tests/support/https/throw_away_authority.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

class FakeAppInfo final : public AppInfo {
 public:
  [[nodiscard]] std::optional<std::string> version() const override { return version_; }

  void set(std::optional<std::string> version) { version_ = std::move(version); }

 private:
  std::optional<std::string> version_ = "1.2.0";
};

class FakeLocations final : public Locations {
 public:
  explicit FakeLocations(std::string folder) : folder_(std::move(folder)) {}

  [[nodiscard]] std::string homeFolder() const override { return folder_; }
  [[nodiscard]] std::string dataFolder() const override { return folder_ + "/Tessum"; }
  [[nodiscard]] std::string configFolder() const override { return folder_; }
  [[nodiscard]] std::optional<std::string> executablePath() const override { return std::nullopt; }

 private:
  const std::string folder_;
};

// Remembers the files it was asked to open.
class FakeOpener final : public UrlOpener {
 public:
  void open(const std::string& url) const override { urls_.push_back(url); }

  [[nodiscard]] const std::vector<std::string>& urls() const { return urls_; }

 private:
  mutable std::vector<std::string> urls_;
};

// An event that happens once; other threads wait for it, a minute at most.
class Signal {
 public:
  void give() { promise_.set_value(); }

  void wait() const {
    EXPECT_EQ(future_.wait_for(std::chrono::minutes(1)), std::future_status::ready);
  }

  [[nodiscard]] bool isGiven() const {
    return future_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  }

 private:
  std::promise<void> promise_;
  const std::shared_future<void> future_ = promise_.get_future().share();
};

// A server's answer for each path; an error page for all others.
class Routes {
 public:
  Routes() = default;
  Routes(std::string path, HttpsServer::Answer answer) { set(std::move(path), std::move(answer)); }

  Routes& set(std::string path, HttpsServer::Answer answer) {
    answers_[std::move(path)] = std::move(answer);
    return *this;
  }

  void operator()(HttpsConnection& connection) const {
    const std::string& request = connection.request();
    const auto start = request.find(' ') + 1;
    const auto found = answers_.find(request.substr(start, request.find(' ', start) - start));
    if (found != answers_.end()) return found->second(connection);
    connection.respond("<html>not here</html>", "Content-Type: text/html\r\n", "404 Not Found");
  }

 private:
  std::map<std::string, HttpsServer::Answer> answers_;
};

using States = std::vector<UpdateState>;

inline const update_state::Error kUnreachable{curl_easy_strerror(CURLE_COULDNT_CONNECT)};

constexpr auto kLatestPath = "/releases/macos/latest";

inline HttpsServer::Answer answering(std::string body, std::string headers = "") {
  return [body = std::move(body), headers = std::move(headers)](HttpsConnection& connection) {
    connection.respond(body, headers);
  };
}

inline std::string releaseJson(const std::string& tag) {
  return R"({"tag":")" + tag +
         R"(","name":"Tessum","body":"Notes","prerelease":true,"publishedAt":"2025-03-04"})";
}

inline ReleaseInfo release(const std::string& tag) {
  return {.tag = tag,
          .name = "Tessum",
          .body = "Notes",
          .prerelease = true,
          .publishedAt = "2025-03-04",
          .assets = std::nullopt};
}

class UpdateCheckerTest : public testing::Test {
 protected:
  UpdateCheckerTest() { writeFile(folder_.file("authority.pem"), authority_.certificate()); }

  // A server with a certificate that the client accepts.
  [[nodiscard]] std::unique_ptr<HttpsServer> serve(HttpsServer::Answer answer) const {
    return std::make_unique<HttpsServer>(authority_.issue("IP:127.0.0.1"), std::move(answer));
  }

  // What the checker opens downloads with.
  [[nodiscard]] virtual const UrlOpener& opener() const { return opener_; }

  // Makes the checker, which records its states.
  void makeChecker(const std::string& primary, const std::string& fallback) {
    checker_ = std::make_unique<UpdateChecker>(
        UpdateChecker::Surroundings{http_, loop_, locations_, appInfo_, opener()},
        std::vector{primary, fallback});
    checker_->setOnStateChange([this](const UpdateState& state) { states_.push_back(state); });
  }

  // Turns the main loop until a state of one of these kinds has been delivered.
  template <typename... Kinds>
  [[nodiscard]] bool waitFor() {
    return loop_.runUntil([this] {
      return !states_.empty() && (std::holds_alternative<Kinds>(states_.back()) || ...);
    });
  }

  [[nodiscard]] bool waitForCheck() {
    return waitFor<update_state::Available, update_state::UpToDate, update_state::Error>();
  }

  [[nodiscard]] bool waitForDownload() {
    return waitFor<update_state::ReadyToInstall, update_state::Error>();
  }

  // Returns the states so far and clears them.
  std::vector<UpdateState> takeStates() { return std::exchange(states_, {}); }

  [[nodiscard]] std::string updatesFolder() const { return locations_.dataFolder() + "/Updates"; }

  const TemporaryFolder folder_;
  const ThrowAwayAuthority authority_;
  FakeClock clock_;
  FakeMainLoop loop_{clock_};
  FakeLocations locations_{folder_.path()};
  FakeAppInfo appInfo_;
  FakeOpener opener_;
  FetchProgramClient http_{
      loop_, {.program = TESSUM_FETCH_PROGRAM, .authoritiesFile = folder_.file("authority.pem")}};
  std::vector<UpdateState> states_;
  std::unique_ptr<UpdateChecker> checker_;
};

}  // namespace tessum
