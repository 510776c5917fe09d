#include <gtest/gtest.h>
#include <sqlite3.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "tests/desktop/recorder_lock.h"
#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

void addOpenSession(const User& user) {
  user.database().insert({.id = {},
                          .appName = "Editor",
                          .bundleID = {},
                          .title = "main.cc",
                          .startTime = SystemClock().now(),
                          .endTime = {}});
}

TEST(Status, OfAFreshMachineSaysThatThereIsNoHistoryAndMakesNone) {
  const User user;
  const Outcome outcome = user.run({"status"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(contains(outcome.output, "Recording  no"));
  EXPECT_TRUE(contains(outcome.output, "does not exist yet"));
  EXPECT_FALSE(std::filesystem::exists(user.dataFolder()));
}

TEST(Status, ShowsTheSessionThatTheRecorderIsInTheMiddleOf) {
  const User user;
  ASSERT_EQ(user.run({"note", "Fixing bug"}).status, 0);
  const RecorderLock recorder(user);
  addOpenSession(user);
  const Outcome outcome = user.run({"status"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(contains(outcome.output, "Recording  yes, since "));
  EXPECT_TRUE(contains(outcome.output, "Editor – main.cc, since "));
  EXPECT_TRUE(contains(outcome.output, "Fixing bug, since "));
  EXPECT_TRUE(contains(outcome.output, user.historyPath() + ", "));
  EXPECT_TRUE(contains(outcome.output, " kB"));
}

TEST(Status, DoesNotTakeWhatWasLeftOpenForTheSessionInFront) {
  const User user;
  user.addSession("Editor", nullptr, "2025-03-04T09:00:00Z", nullptr);
  const RecorderLock recorder(user);
  EXPECT_TRUE(contains(user.run({"status"}).output, "In front   nothing"));
}

TEST(Status, SaysSinceWhenTheUserIsAwayAndWhatKeepsItFromBeingSo) {
  const User user;
  addOpenSession(user);
  const Date now = SystemClock().now();
  {
    const RecorderLock recorder(user,
                                {.since = movedBy(now, -600), .awaySince = movedBy(now, -60)});
    const Outcome outcome = user.run({"status"});
    EXPECT_TRUE(contains(outcome.output, "Away       since "));
    EXPECT_TRUE(contains(outcome.output, ", by test"));
  }
  const RecorderLock recorder(user, {.since = now, .awake = {"Player: a film", "Call"}});
  EXPECT_TRUE(contains(user.run({"status"}).output, "Kept awake  by Player: a film, Call"));
}

TEST(Status, DoesNotTurnAStartingRecorderAway) {
  const User user;
  addOpenSession(user);
  { const RecorderLock past(user); }
  const std::string lock = user.dataFolder() + "/recorder.lock";
  std::atomic<bool> isAsking = true;
  std::thread asking([&] {
    for (int i = 0; i < 20; ++i) EXPECT_EQ(user.run({"status"}).status, 0);
    isAsking = false;
  });
  int refusals = 0;
  while (isAsking) refusals += FileLock::take(lock) ? 0 : 1;
  asking.join();
  EXPECT_EQ(refusals, 0);
}

TEST(Status, DoesNotTakeASessionOfAPastRunForTheCurrentOne) {
  const User user;
  addOpenSession(user);
  { const RecorderLock past(user); }
  const Outcome outcome = user.run({"status"});
  EXPECT_TRUE(contains(outcome.output, "Recording  no"));
  EXPECT_TRUE(contains(outcome.output, "In front   nothing"));
}

TEST(Status, FailsWhereTheHistoryCannotBeRead) {
  const User user;
  addOpenSession(user);
  Sql other(user.historyPath());
  other.run("BEGIN EXCLUSIVE;");
  const Outcome outcome = user.run({"status"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_NE(outcome.errors.find(sqliteText(SQLITE_BUSY)), std::string::npos);
}

}  // namespace
}  // namespace tessum
