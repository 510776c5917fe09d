#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <optional>
#include <string>
#include <vector>

#include "tests/update/update_checker_fixture.h"

namespace tessum {
namespace {

using update_state::Available;
using update_state::Checking;
using update_state::Error;
using update_state::Idle;
using update_state::UpToDate;

class UpdateCheckTest : public UpdateCheckerTest {};

struct VersionCase {
  std::string running;
  std::string tag;
  bool isAvailable;
};

class UpdateCheckVersions : public UpdateCheckTest,
                            public testing::WithParamInterface<VersionCase> {};

TEST_P(UpdateCheckVersions, OffersWhatIsNewer) {
  const auto server = serve(Routes(kLatestPath, answering(releaseJson(GetParam().tag))));
  appInfo_.set(GetParam().running);
  makeChecker(server->url(), unreachableUrl());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  const UpdateState found = Available{release(GetParam().tag)};
  EXPECT_EQ(states_, (States{Checking{}, GetParam().isAvailable ? found : UpToDate{}}));
}

INSTANTIATE_TEST_SUITE_P(
    Versions, UpdateCheckVersions,
    testing::Values(VersionCase{"1.2.0", "v1.2", false}, VersionCase{"1.2.0", "v1.10.0", true},
                    VersionCase{"1.2.0", "1.2.0", false}, VersionCase{"1.2.0", "v1.1.9", false},
                    // The V stays and costs its number: 3.0 against 1.2.0.
                    VersionCase{"1.2.0", "V1.3.0", true}, VersionCase{"1.2.0", "vv1.3.0", true},
                    VersionCase{"1.2.0-beta", "1.2.0", false}));

TEST_F(UpdateCheckTest, StartsIdleAndAsksForNothing) {
  const auto server = serve(Routes());
  makeChecker(server->url(), server->url());
  loop_.runPosted();
  EXPECT_EQ(checker_->currentState(), UpdateState(Idle{}));
  EXPECT_EQ(checker_->appVersion(), "1.2.0");
  EXPECT_TRUE(server->paths().empty());
}

TEST_F(UpdateCheckTest, SendsAPlainRequestBelowTheBase) {
  std::promise<std::string> request;
  const auto server = serve([&](HttpsConnection& connection) {
    request.set_value(connection.request());
    connection.respond(releaseJson("v2"));
  });
  makeChecker(server->url() + "/base/", unreachableUrl());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  const std::string host = server->url().substr(std::string("https://").size());
  EXPECT_EQ(request.get_future().get(), "GET /base/releases/macos/latest HTTP/1.1\r\nHost: " +
                                            host + "\r\nAccept: */*\r\n\r\n");
}

TEST_F(UpdateCheckTest, DoesNotLookAtTheStatus) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.respond(releaseJson("v2"), "", "500 Internal Server Error");
  });
  makeChecker(server->url(), unreachableUrl());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(states_.back(), UpdateState(Available{release("v2")}));
}

TEST_F(UpdateCheckTest, AsksTheFallbackWhenThePrimaryIsDown) {
  const auto fallback = serve(Routes(kLatestPath, answering(releaseJson("v2"))));
  makeChecker(unreachableUrl(), fallback->url());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(states_, (States{Checking{}, Available{release("v2")}}));
}

TEST_F(UpdateCheckTest, DoesNotAskTheFallbackWhenThePrimaryAnswers) {
  const auto primary = serve(Routes(kLatestPath, answering(releaseJson("v1.0"))));
  const auto fallback = serve(Routes(kLatestPath, answering(releaseJson("v2"))));
  makeChecker(primary->url(), fallback->url());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(states_.back(), UpdateState(UpToDate{}));
  EXPECT_TRUE(fallback->paths().empty());
}

TEST_F(UpdateCheckTest, ReportsTheFallbacksFailureWhenBothAreDown) {
  makeChecker(unreachableUrl(), unreachableUrl());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(states_, (States{Checking{}, kUnreachable}));
}

TEST_F(UpdateCheckTest, ReportsTheNetworkWhenAnErrorPagePrecedesIt) {
  const auto primary = serve(Routes());
  makeChecker(primary->url(), unreachableUrl());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(states_.back(), UpdateState(kUnreachable));
  EXPECT_EQ(primary->paths(), std::vector<std::string>{kLatestPath});
}

struct AnswerCase {
  std::string body;
  std::string message;  // the beginning
};

class UpdateCheckAnswers : public UpdateCheckTest,
                           public testing::WithParamInterface<AnswerCase> {};

TEST_P(UpdateCheckAnswers, SayWhatIsWrongWithThem) {
  const auto fallback = serve(Routes(kLatestPath, answering(GetParam().body)));
  makeChecker(unreachableUrl(), fallback->url());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  const auto* error = std::get_if<Error>(&states_.back());
  ASSERT_NE(error, nullptr);
  EXPECT_TRUE(error->message.starts_with(GetParam().message)) << error->message;
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, UpdateCheckAnswers,
    testing::Values(
        AnswerCase{"", "The text is not valid JSON: "},
        AnswerCase{"<html>502 Bad Gateway</html>", "The text is not valid JSON: "},
        AnswerCase{R"({"tag":"v2"})", "missing member name"},
        AnswerCase{R"({"tag":"v2","name":"","prerelease":false,"publishedAt":""})",
                   "missing member body"},
        AnswerCase{R"({"tag":"v2","name":"","body":"","prerelease":false})",
                   "missing member publishedAt"},
        AnswerCase{R"({"tag":2,"name":"","body":"","prerelease":false,"publishedAt":""})",
                   "expected text at tag"},
        AnswerCase{R"({"tag":"v2","name":"","body":"","prerelease":false,"publishedAt":"",)"
                   R"("assets":[{"name":"a","size":1,"contentType":""},{"name":1}]})",
                   "expected text at assets[1].name"}));

TEST_F(UpdateCheckTest, ReadsADescriptionOfOneMebibyteAndNoLonger) {
  const std::size_t rest = (1 << 20) - releaseJson("v2.").size();
  const std::string tag = "v2." + std::string(rest, '0');
  std::atomic<bool> isLonger = false;
  const auto server = serve([&](HttpsConnection& connection) {
    connection.respond(releaseJson(isLonger ? tag + "0" : tag));
  });
  makeChecker(unreachableUrl(), server->url());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(takeStates().back(), UpdateState(Available{release(tag)}));
  isLonger = true;
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(states_.back(), UpdateState(Error{"The answer is longer than 1048576 bytes"}));
}

TEST_F(UpdateCheckTest, GivesUpOnAnAnswerWithoutEnd) {
  const auto server = serve([](HttpsConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\n\r\n");
    const std::string blanks(1 << 16, ' ');
    while (connection.send(blanks)) {
    }
  });
  makeChecker(unreachableUrl(), server->url());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(states_.back(), UpdateState(Error{"The answer is longer than 1048576 bytes"}));
}

TEST_F(UpdateCheckTest, DoesNothingWhenTheApplicationHasNoVersion) {
  const auto server = serve(Routes());
  appInfo_.set(std::nullopt);
  makeChecker(server->url(), server->url());
  checker_->checkForUpdates();
  loop_.runPosted();
  EXPECT_EQ(checker_->appVersion(), std::nullopt);
  EXPECT_TRUE(states_.empty());
  EXPECT_EQ(checker_->currentState(), UpdateState(Idle{}));
  EXPECT_TRUE(server->paths().empty());
}

TEST_F(UpdateCheckTest, FetchesTheReleaseForAnyoneWithoutChangingTheState) {
  const auto server = serve(Routes(kLatestPath, answering(releaseJson("v0.1"))));
  makeChecker(unreachableUrl(), server->url());
  std::optional<Outcome<ReleaseInfo>> fetched;
  checker_->fetchLatestRelease([&](Outcome<ReleaseInfo> outcome) { fetched = std::move(outcome); });
  ASSERT_TRUE(loop_.runUntil([&] { return fetched.has_value(); }));
  ASSERT_TRUE(std::holds_alternative<ReleaseInfo>(*fetched));
  EXPECT_EQ(std::get<ReleaseInfo>(*fetched), release("v0.1"));
  EXPECT_EQ(checker_->currentState(), UpdateState(Idle{}));
}

using UpdateCheckerDeathTest = UpdateCheckTest;

TEST_F(UpdateCheckerDeathTest, NeedsAbsoluteHttpsUrls) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(makeChecker("http://updates.example/", "https://updates.example/"),
               "no absolute HTTPS URL");
  EXPECT_DEATH(makeChecker("https://updates.example/", "updates"), "no absolute HTTPS URL");
}

TEST_F(UpdateCheckerDeathTest, NeedsABaseUrl) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      UpdateChecker({http_, loop_, locations_, appInfo_, opener_}, std::vector<std::string>()),
      "no base URL");
}

TEST_F(UpdateCheckTest, WorksOverTheConfiguredUrls) {
  const UpdateChecker checker({http_, loop_, locations_, appInfo_, opener_});
  EXPECT_EQ(checker.currentState(), UpdateState(Idle{}));
}

}  // namespace
}  // namespace tessum
