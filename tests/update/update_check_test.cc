#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "tests/update/update_checker_fixture.h"

namespace tessum {
namespace {

using update_state::Available;
using update_state::Checking;
using update_state::Error;
using update_state::Idle;
using update_state::UpToDate;

using States = std::vector<UpdateState>;

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
  settle();
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
  EXPECT_EQ(states_, (States{Checking{}, Error{"Couldn't connect to server"}}));
}

TEST_F(UpdateCheckTest, ReportsTheNetworkWhenAnErrorPagePrecedesIt) {
  const auto primary = serve(Routes());
  makeChecker(primary->url(), unreachableUrl());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(states_.back(), UpdateState(Error{"Couldn't connect to server"}));
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

TEST_F(UpdateCheckTest, ReadsALongAnswer) {
  const std::string tag = "v2." + std::string(3'000'000, '0');
  const auto server = serve(Routes(kLatestPath, answering(releaseJson(tag))));
  makeChecker(server->url(), unreachableUrl());
  checker_->checkForUpdates();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(states_.back(), UpdateState(Available{release(tag)}));
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
  EXPECT_EQ(states_.back(), UpdateState(Error{"The answer is too long"}));
}

TEST_F(UpdateCheckTest, DoesNothingWhenTheApplicationHasNoVersion) {
  const auto server = serve(Routes());
  appInfo_.set(std::nullopt);
  makeChecker(server->url(), server->url());
  checker_->checkForUpdates();
  settle();
  EXPECT_EQ(checker_->appVersion(), std::nullopt);
  EXPECT_TRUE(states_.empty());
  EXPECT_EQ(checker_->currentState(), UpdateState(Idle{}));
  EXPECT_TRUE(server->paths().empty());
}

TEST_F(UpdateCheckTest, TellsTheObserverEachTimeOnTheMainThread) {
  makeChecker(unreachableUrl(), unreachableUrl());
  std::vector<std::thread::id> threads;
  checker_->setOnStateChange([&](const UpdateState& state) {
    threads.push_back(std::this_thread::get_id());
    states_.push_back(state);
  });
  const Error failure{"Couldn't connect to server"};
  for (int i = 0; i < 2; ++i) {
    checker_->checkForUpdates();
    ASSERT_TRUE(waitForCheck());
    EXPECT_EQ(takeStates(), (States{Checking{}, failure}));
  }
  EXPECT_EQ(threads, std::vector(4, std::this_thread::get_id()));
}

TEST_F(UpdateCheckTest, TellsALaterObserverNothingOfEarlierStates) {
  makeChecker(unreachableUrl(), unreachableUrl());
  checker_->setOnStateChange(nullptr);
  checker_->checkForUpdates();
  ASSERT_TRUE(
      loop_.runUntil([&] { return std::holds_alternative<Error>(checker_->currentState()); }));
  checker_->setOnStateChange([this](const UpdateState& state) { states_.push_back(state); });
  settle();
  EXPECT_TRUE(states_.empty());
}

TEST_F(UpdateCheckTest, DeliversAStateToTheObserverOfItsMoment) {
  makeChecker(unreachableUrl(), unreachableUrl());
  checker_->checkForUpdates();
  // Both states are set, with the first observer in place, before anything is delivered.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!std::holds_alternative<Error>(checker_->currentState())) {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    std::this_thread::yield();
  }
  waitForQueue();
  bool isCalled = false;
  checker_->setOnStateChange([&](const UpdateState&) { isCalled = true; });
  loop_.runPosted();
  EXPECT_EQ(states_.size(), 2u);
  EXPECT_FALSE(isCalled);
}

TEST_F(UpdateCheckTest, LetsTheObserverEndTheChecker) {
  makeChecker(unreachableUrl(), unreachableUrl());
  checker_->setOnStateChange([this](const UpdateState& state) {
    states_.push_back(state);
    checker_.reset();
  });
  checker_->checkForUpdates();
  ASSERT_TRUE(loop_.runUntil([this] { return checker_ == nullptr; }));
  settle();
  EXPECT_EQ(states_, States{Checking{}});
}

TEST_F(UpdateCheckTest, ChecksAtOnceAndThenEverySixHours) {
  const auto server = serve(Routes(kLatestPath, answering(releaseJson("v1.0"))));
  makeChecker(server->url(), unreachableUrl());
  checker_->startPeriodicChecks();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(server->paths().size(), 1u);
  for (std::size_t later = 2; later <= 4; ++later) {
    loop_.advance(21599.5);
    settle();
    EXPECT_EQ(server->paths().size(), later - 1);
    takeStates();
    loop_.advance(0.5);
    ASSERT_TRUE(waitForCheck());
    EXPECT_EQ(server->paths().size(), later);
  }
  checker_.reset();
  takeStates();
  loop_.advance(10 * 21600);
  settle();
  EXPECT_TRUE(states_.empty());
  EXPECT_EQ(server->paths().size(), 4u);
}

TEST_F(UpdateCheckTest, KeepsBothTimersWhenStartedTwice) {
  makeChecker(unreachableUrl(), unreachableUrl());
  checker_->startPeriodicChecks();
  checker_->startPeriodicChecks();
  EXPECT_EQ(loop_.timerIntervals(), (std::vector<double>{21600, 21600}));
  checker_.reset();
  // The first timer is still there and finds nothing to do.
  EXPECT_EQ(loop_.timerIntervals(), std::vector<double>{21600});
  loop_.advance(21600);
  settle();
  EXPECT_TRUE(states_.empty());
}

TEST_F(UpdateCheckTest, CanBeDestroyedDuringACheck) {
  Signal isAsked;
  const auto server = serve([&](HttpsConnection& connection) {
    isAsked.give();
    connection.waitUntilClosed();
  });
  makeChecker(server->url(), unreachableUrl());
  checker_->checkForUpdates();
  isAsked.wait();
  checker_.reset();
  settle();
  EXPECT_TRUE(states_.empty());
}

TEST_F(UpdateCheckTest, CanBeDestroyedAtAnyMomentOfACheck) {
  const auto server = serve(Routes(kLatestPath, answering(releaseJson("v2"))));
  for (int i = 0; i < 20; ++i) {
    makeChecker(server->url(), unreachableUrl());
    checker_->checkForUpdates();
    for (int turn = 0; turn < i; ++turn) settle();
    checker_.reset();
    takeStates();
    settle();
    EXPECT_TRUE(states_.empty());
  }
}

TEST_F(UpdateCheckTest, FetchesTheReleaseForAnyoneWithoutChangingTheState) {
  const auto server = serve(Routes(kLatestPath, answering(releaseJson("v0.1"))));
  makeChecker(unreachableUrl(), server->url());
  std::promise<Outcome<ReleaseInfo>> fetched;
  checker_->fetchLatestRelease(
      [&](Outcome<ReleaseInfo> outcome) { fetched.set_value(std::move(outcome)); });
  const auto outcome = fetched.get_future().get();
  ASSERT_TRUE(std::holds_alternative<ReleaseInfo>(outcome));
  EXPECT_EQ(std::get<ReleaseInfo>(outcome), release("v0.1"));
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
  EXPECT_DEATH(UpdateChecker({*http_, queue_, loop_, locations_, appInfo_, opener_},
                             std::vector<std::string>()),
               "no base URL");
}

TEST_F(UpdateCheckerDeathTest, IsNotDestroyedOnItsQueue) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  makeChecker(unreachableUrl(), unreachableUrl());
  EXPECT_DEATH(
      {
        queue_.post([this] { checker_.reset(); });
        settle();
      },
      "destroyed on its own queue");
}

TEST_F(UpdateCheckTest, WorksOverTheConfiguredUrls) {
  const UpdateChecker checker({*http_, queue_, loop_, locations_, appInfo_, opener_});
  EXPECT_EQ(checker.currentState(), UpdateState(Idle{}));
}

}  // namespace
}  // namespace tessum
