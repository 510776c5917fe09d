// The client over the real program, with a real main loop and real servers around it.

#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/fetch/fetch_program_client.h"
#include "core/loop/system_main_loop.h"
#include "core/platform/descriptor.h"
#include "tests/support/environment.h"
#include "tests/support/https/https_server.h"
#include "tests/support/https/throw_away_authority.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

class HttpClientTest : public testing::Test {
 protected:
  static constexpr std::size_t kMostBytes = 100'000;

  HttpClientTest() { writeFile(folder_.file("authority.pem"), authority_.certificate()); }

  [[nodiscard]] FetchProgramClient::Settings settings() const {
    return {.program = TESSUM_FETCH_PROGRAM, .authoritiesFile = folder_.file("authority.pem")};
  }

  [[nodiscard]] std::unique_ptr<HttpsServer> serve(HttpsServer::Answer answer) const {
    return std::make_unique<HttpsServer>(authority_.issue("IP:127.0.0.1"), std::move(answer));
  }

  // Runs the main loop until `isDone`. False after a minute.
  template <typename Predicate>
  [[nodiscard]] bool runUntil(Predicate isDone) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    const auto timer = loop_.startTimer(0.002, [&] {
      if (isDone() || std::chrono::steady_clock::now() > deadline) loop_.quit();
    });
    loop_.run();
    loop_.invalidateTimer(timer);
    return isDone();
  }

  [[nodiscard]] HttpResult fetch(HttpClient& client, const std::string& url) {
    std::optional<HttpResult> ended;
    const auto transfer =
        client.get(url, kMostBytes, [&](HttpResult result) { ended = std::move(result); });
    if (!runUntil([&] { return ended.has_value(); })) return {{}, {}, "no end"};
    return std::move(*ended);
  }

  [[nodiscard]] HttpResult fetch(const std::string& url) {
    FetchProgramClient client(loop_, settings());
    return fetch(client, url);
  }

  // The end of a download of `url` into the file `path`, and the progress up to there.
  [[nodiscard]] std::pair<HttpResult, std::vector<std::int64_t>> download(HttpClient& client,
                                                                          const std::string& url,
                                                                          const std::string& path) {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    std::optional<HttpResult> ended;
    std::vector<std::int64_t> progress;
    const auto transfer = client.download(
        url, file.number(),
        [&](const HttpHead&, std::int64_t received) { progress.push_back(received); },
        [&](HttpResult result) { ended = std::move(result); });
    if (!runUntil([&] { return ended.has_value(); })) return {{{}, {}, "no end"}, {}};
    return {std::move(*ended), progress};
  }

  [[nodiscard]] std::pair<HttpResult, std::vector<std::int64_t>> download(const std::string& url,
                                                                          const std::string& path) {
    FetchProgramClient client(loop_, settings());
    return download(client, url, path);
  }

  const TemporaryFolder folder_;
  const ThrowAwayAuthority authority_;
  const ScopedVariable noProxy_{"no_proxy", "*"};
  SystemMainLoop loop_;
};

}  // namespace tessum
