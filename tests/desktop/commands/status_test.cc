#include <gtest/gtest.h>

#include <filesystem>

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

TEST(Status, OfAFreshMachineSaysThatThereIsNoRecordAndMakesNone) {
  const User user;
  const Outcome outcome = user.run({"status"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(contains(outcome.output, "Recording  no"));
  EXPECT_TRUE(contains(outcome.output, "does not exist yet"));
  EXPECT_FALSE(std::filesystem::exists(user.dataFolder()));
}

TEST(Status, ShowsTheSessionThatTheRecorderIsInTheMiddleOf) {
  const User user;
  addOpenSession(user);
  ASSERT_EQ(user.run({"note", "Fixing bug"}).status, 0);
  const RecorderLock recorder(user);
  const Outcome outcome = user.run({"status"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(contains(outcome.output, "Recording  yes, since "));
  EXPECT_TRUE(contains(outcome.output, "Editor – main.cc, since "));
  EXPECT_TRUE(contains(outcome.output, "Fixing bug, since "));
  EXPECT_TRUE(contains(outcome.output, user.historyPath() + ", "));
  EXPECT_TRUE(contains(outcome.output, " kB"));
}

TEST(Status, DoesNotTakeASessionOfAPastRunForTheCurrentOne) {
  const User user;
  addOpenSession(user);
  { const RecorderLock past(user); }
  const Outcome outcome = user.run({"status"});
  EXPECT_TRUE(contains(outcome.output, "Recording  no"));
  EXPECT_TRUE(contains(outcome.output, "In front   nothing"));
}

TEST(Status, FailsWhereTheRecordCannotBeRead) {
  const User user;
  addOpenSession(user);
  Sql other(user.historyPath());
  other.run("BEGIN EXCLUSIVE;");
  const Outcome outcome = user.run({"status"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_NE(outcome.errors.find("database is locked"), std::string::npos);
}

}  // namespace
}  // namespace tessum
