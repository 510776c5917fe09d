// When the checker checks, when it tells its observer, and its end.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/update/update_checker_fixture.h"

namespace tessum {
namespace {

using update_state::Checking;
using update_state::Error;

class UpdateTimesTest : public UpdateCheckerTest {};

TEST_F(UpdateTimesTest, TellsTheObserverEachTime) {
  makeChecker(unreachableUrl(), unreachableUrl());
  for (int i = 0; i < 2; ++i) {
    checker_->checkForUpdates();
    ASSERT_TRUE(waitForCheck());
    EXPECT_EQ(takeStates(), (States{Checking{}, kUnreachable}));
  }
}

TEST_F(UpdateTimesTest, TellsALaterObserverNothingOfEarlierStates) {
  makeChecker(unreachableUrl(), unreachableUrl());
  checker_->setOnStateChange(nullptr);
  checker_->checkForUpdates();
  ASSERT_TRUE(
      loop_.runUntil([&] { return std::holds_alternative<Error>(checker_->currentState()); }));
  checker_->setOnStateChange([this](const UpdateState& state) { states_.push_back(state); });
  loop_.runPosted();
  EXPECT_TRUE(states_.empty());
}

TEST_F(UpdateTimesTest, DeliversAStateToTheObserverOfItsMoment) {
  makeChecker(unreachableUrl(), unreachableUrl());
  checker_->checkForUpdates();
  EXPECT_TRUE(states_.empty()) << "it is delivered later";
  bool isCalled = false;
  checker_->setOnStateChange([&](const UpdateState&) { isCalled = true; });
  loop_.runPosted();
  EXPECT_EQ(states_, States{Checking{}});
  EXPECT_FALSE(isCalled);
}

TEST_F(UpdateTimesTest, LetsTheObserverEndTheChecker) {
  makeChecker(unreachableUrl(), unreachableUrl());
  checker_->setOnStateChange([this](const UpdateState& state) {
    states_.push_back(state);
    checker_.reset();
  });
  checker_->checkForUpdates();
  ASSERT_TRUE(loop_.runUntil([this] { return checker_ == nullptr; }));
  loop_.runPosted();
  EXPECT_EQ(states_, States{Checking{}});
}

TEST_F(UpdateTimesTest, ChecksAtOnceAndThenEverySixHours) {
  const auto server = serve(Routes(kLatestPath, answering(releaseJson("v1.0"))));
  makeChecker(server->url(), unreachableUrl());
  checker_->startPeriodicChecks();
  ASSERT_TRUE(waitForCheck());
  EXPECT_EQ(server->paths().size(), 1u);
  for (std::size_t later = 2; later <= 4; ++later) {
    loop_.advance(21599.5);
    loop_.runPosted();
    EXPECT_EQ(server->paths().size(), later - 1);
    takeStates();
    loop_.advance(0.5);
    ASSERT_TRUE(waitForCheck());
    EXPECT_EQ(server->paths().size(), later);
  }
  checker_.reset();
  takeStates();
  loop_.advance(10 * 21600);
  loop_.runPosted();
  EXPECT_TRUE(states_.empty());
  EXPECT_EQ(server->paths().size(), 4u);
}

TEST_F(UpdateTimesTest, KeepsBothTimersWhenStartedTwice) {
  makeChecker(unreachableUrl(), unreachableUrl());
  checker_->startPeriodicChecks();
  checker_->startPeriodicChecks();
  // The others are those of the transfers.
  ASSERT_TRUE(loop_.runUntil([&] { return loop_.timerIntervals().size() == 2; }));
  EXPECT_EQ(loop_.timerIntervals(), (std::vector<double>{21600, 21600}));
  checker_.reset();
  EXPECT_EQ(loop_.timerIntervals(), std::vector<double>{21600}) << "the first one goes on";
  takeStates();
  loop_.advance(21600);
  loop_.runPosted();
  EXPECT_TRUE(states_.empty());
}

TEST_F(UpdateTimesTest, EndsAStuckCheckLongBeforeTheNextOne) {
  Signal isAsked;
  const auto server = serve([&](HttpsConnection& connection) {
    isAsked.give();
    connection.waitUntilClosed();
  });
  makeChecker(unreachableUrl(), server->url());
  checker_->startPeriodicChecks();
  ASSERT_TRUE(loop_.runUntil([&] { return isAsked.isGiven(); }));
  loop_.advance(3600);
  EXPECT_EQ(states_.back(), UpdateState(Error{"The transfer took too long"}));
}

TEST_F(UpdateTimesTest, CanBeDestroyedDuringACheck) {
  Signal isAsked;
  const auto server = serve([&](HttpsConnection& connection) {
    isAsked.give();
    connection.waitUntilClosed();
  });
  makeChecker(server->url(), unreachableUrl());
  checker_->checkForUpdates();
  isAsked.wait();
  checker_.reset();
  loop_.runPosted();
  EXPECT_TRUE(states_.empty());
}

TEST_F(UpdateTimesTest, CanBeDestroyedAtAnyMomentOfACheck) {
  const auto server = serve(Routes(kLatestPath, answering(releaseJson("v2"))));
  for (int i = 0; i < 20; ++i) {
    makeChecker(server->url(), unreachableUrl());
    checker_->checkForUpdates();
    int turns = 0;
    ASSERT_TRUE(loop_.runUntil([&] { return turns++ == i; }));
    checker_.reset();
    takeStates();
    loop_.runPosted();
    EXPECT_TRUE(states_.empty());
  }
}

TEST_F(UpdateTimesTest, CanBeDestroyedByTheCallerOfAFetch) {
  makeChecker(unreachableUrl(), unreachableUrl());
  bool isDone = false;
  checker_->fetchLatestRelease([&](const Outcome<ReleaseInfo>&) {
    checker_.reset();
    isDone = true;
  });
  EXPECT_TRUE(loop_.runUntil([&] { return isDone; }));
}

}  // namespace
}  // namespace tessum
