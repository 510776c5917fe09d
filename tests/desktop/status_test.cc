#include <gtest/gtest.h>

#include <filesystem>

#include "tests/desktop/recorder_lock.h"
#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

testing::AssertionResult shows(const Outcome& outcome, const std::string& part) {
  if (outcome.output.find(part) != std::string::npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << '"' << part << "\" is not in:\n" << outcome.output;
}

void addOpenSession(const User& user) {
  user.record().insert({.id = {},
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
  EXPECT_TRUE(shows(outcome, "Recording  no"));
  EXPECT_TRUE(shows(outcome, "does not exist yet"));
  EXPECT_FALSE(std::filesystem::exists(user.dataFolder()));
}

TEST(Status, ShowsTheSessionThatTheRecorderIsInTheMiddleOf) {
  const User user;
  addOpenSession(user);
  ASSERT_EQ(user.run({"note", "Fixing bug"}).status, 0);
  const RecorderLock recorder(user);
  const Outcome outcome = user.run({"status"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(shows(outcome, "Recording  yes, since "));
  EXPECT_TRUE(shows(outcome, "Editor – main.cc, since "));
  EXPECT_TRUE(shows(outcome, "Fixing bug, since "));
  EXPECT_TRUE(shows(outcome, user.recordPath() + ", "));
  EXPECT_TRUE(shows(outcome, " kB"));
}

TEST(Status, DoesNotTakeASessionOfAPastRunForTheCurrentOne) {
  const User user;
  addOpenSession(user);
  { const RecorderLock past(user); }
  const Outcome outcome = user.run({"status"});
  EXPECT_TRUE(shows(outcome, "Recording  no"));
  EXPECT_TRUE(shows(outcome, "In front   nothing"));
}

TEST(Status, FailsWhereTheRecordCannotBeRead) {
  const User user;
  addOpenSession(user);
  Sql other(user.recordPath());
  other.run("BEGIN EXCLUSIVE;");
  const Outcome outcome = user.run({"status"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_NE(outcome.errors.find("database is locked"), std::string::npos);
}

}  // namespace
}  // namespace tessum
