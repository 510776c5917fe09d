#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "core/base/limits.h"
#include "tests/desktop/loopback_server.h"
#include "tests/desktop/recorder_lock.h"
#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

testing::AssertionResult shows(const Outcome& outcome, const std::string& part) {
  if (outcome.output.find(part) != std::string::npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << '"' << part << "\" is not in:\n" << outcome.output;
}

void addSession(const User& user, const char* app, const char* start, const char* end) {
  user.record().insert({.id = {},
                        .appName = app,
                        .bundleID = {},
                        .title = {},
                        .startTime = at(start),
                        .endTime = end != nullptr ? std::optional(at(end)) : std::nullopt});
}

TEST(Doctor, FindsTheRecordSound) {
  const User user;
  addSession(user, "Editor", "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  const Outcome outcome = user.run({"doctor"});
  EXPECT_TRUE(shows(outcome, "ok   The folder " + user.dataFolder() + " can be written to."));
  EXPECT_TRUE(shows(outcome, "ok   The record " + user.recordPath() + " is sound."));
  EXPECT_TRUE(shows(outcome, "ok   Every session of the past has ended."));
}

TEST(Doctor, FindsNothingWrongWithARecordThatIsYetToCome) {
  const User user;
  EXPECT_TRUE(shows(user.run({"doctor"}), "ok   There is no record yet"));
  EXPECT_FALSE(std::filesystem::exists(user.dataFolder()));
}

TEST(Doctor, FindsAFolderThatCannotBeWrittenTo) {
  const User user;
  std::filesystem::create_directories(user.dataFolder());
  chmod(user.dataFolder().c_str(), 0500);
  const Outcome outcome = user.runWithoutPowers({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "BAD  The folder " + user.dataFolder() + " cannot be written to."));
  EXPECT_TRUE(shows(outcome, "chmod u+rwx"));
  chmod(user.dataFolder().c_str(), 0700);
}

TEST(Doctor, FindsAFileInThePlaceOfTheFolder) {
  const User user;
  writeFile(user.file("data"), "");
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "is in the place of a folder"));
}

TEST(Doctor, FindsARecordThatIsReadOnlyOrCannotBeRead) {
  const User user;
  addSession(user, "Editor", "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  chmod(user.recordPath().c_str(), 0400);
  EXPECT_TRUE(shows(user.runWithoutPowers({"doctor"}), "is read-only."));
  chmod(user.recordPath().c_str(), 0);
  const Outcome outcome = user.runWithoutPowers({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "unable to open database file"));
  EXPECT_TRUE(shows(outcome, "Give yourself the right to read"));
}

TEST(Doctor, FindsALock) {
  const User user;
  addSession(user, "Editor", "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  Sql other(user.recordPath());
  other.run("BEGIN EXCLUSIVE;");
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "database is locked"));
  EXPECT_TRUE(shows(outcome, "Another program is using the record."));
}

TEST(Doctor, FindsDamage) {
  const User user;
  addSession(user, "Editor", "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  {
    // An index that lacks a row: reading goes on as if nothing were wrong.
    Sql sql(user.recordPath());
    sql.run(
        "PRAGMA writable_schema = ON;"
        "UPDATE sqlite_master SET rootpage = (SELECT rootpage FROM sqlite_master WHERE name = "
        "'idx_annotations_started') WHERE name = 'idx_activities_app';");
  }
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "BAD  The record is damaged: "));
  EXPECT_TRUE(shows(outcome, "Tessum backup"));
}

TEST(Doctor, FindsAnAssistantsFileThatIsNotPlainJson) {
  const User user;
  const std::string file = user.file(".cursor/mcp.json");
  std::filesystem::create_directories(user.file(".cursor"));
  const std::string content = "{\n  // mine\n  \"mcpServers\": {},\n}\n";
  writeFile(file, content);
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "BAD  Cursor: " + file + " is not plain JSON"));
  EXPECT_TRUE(shows(outcome, "Mend the file; comments and commas behind the last value"));
  EXPECT_EQ(readFile(file), content);
}

TEST(Doctor, FindsARegisteredProgramThatIsGone) {
  const User user;
  ASSERT_EQ(user.run({"install", "--all"}).status, 0);
  const std::string entry =
      R"({"mcpServers": {"tessum": {"command": "/nowhere/TessumMCP", "args": []}}})";
  writeFile(user.file(".cursor/mcp.json"), entry);
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "BAD  Cursor: the entry in " + user.file(".cursor/mcp.json") +
                                 " does not work: its program is missing."));
  EXPECT_TRUE(shows(outcome, "Register anew: Tessum install \"Cursor\""));
  EXPECT_TRUE(shows(outcome, "ok   Claude Desktop is registered in "));
  ASSERT_EQ(user.run({"install", "Cursor"}).status, 0);
  EXPECT_TRUE(shows(user.run({"doctor"}), "ok   Cursor is registered in "));
}

TEST(Doctor, FindsThePortTaken) {
  const User user;
  LoopbackServer server(limits::kDefaultPort);
  if (!server.isBound()) GTEST_SKIP() << "the endpoint's port is taken";
  EXPECT_TRUE(shows(user.run({"doctor"}), "ok   The port 7384 is free"));
  server.answerWith("HTTP/1.1 200 OK\r\n\r\nsomething else");
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "BAD  Another program has taken the port 7384"));
  EXPECT_TRUE(shows(outcome, "ss -ltnp"));
}

TEST(Doctor, FindsItsOwnEndpointThatAnswers) {
  const User user;
  LoopbackServer server(limits::kDefaultPort);
  if (!server.isBound()) GTEST_SKIP() << "the endpoint's port is taken";
  server.answerWith("HTTP/1.1 200 OK\r\n\r\nTessum MCP Server");
  EXPECT_TRUE(shows(user.run({"doctor"}), "ok   The endpoint http://localhost:7384/mcp answers."));
}

#ifndef __APPLE__
TEST(Doctor, FindsThatThereIsNoDisplay) {
  const User user;
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "BAD  "));
  EXPECT_TRUE(shows(outcome, "Run \"Tessum record\" in a desktop session"));
}
#endif

class OpenSessions : public testing::Test {
 protected:
  OpenSessions() {
    addSession(user, "First", "2025-03-04T09:00:00Z", nullptr);
    addSession(user, "Second", "2025-03-04T11:00:00Z", "2025-03-04T12:00:00Z");
    addSession(user, "Third", "2025-03-04T13:00:00Z", nullptr);
  }

  std::string endOf(const std::string& app) {
    return Sql(user.recordPath())
        .row("SELECT strftime('%H:%M', end_time, 'unixepoch') FROM activities WHERE app_name = '" +
             app + "'");
  }

  User user;
};

TEST_F(OpenSessions, AreFoundAndNotTouched) {
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "BAD  2 sessions were left open"));
  EXPECT_TRUE(shows(outcome, "the oldest on 2025-03-04."));
  EXPECT_EQ(endOf("First"), "NULL");
}

TEST_F(OpenSessions, EndWhereTheNextOneBegan) {
  const Outcome outcome = user.run({"doctor", "--close-open"});
  EXPECT_EQ(endOf("First"), "11:00");
  EXPECT_EQ(endOf("Second"), "12:00");
  EXPECT_EQ(endOf("Third"), "NULL") << "nothing says when it ended";
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(shows(outcome, "Third of 2025-03-04 13:00 stays open"));
}

TEST_F(OpenSessions, EndAfterTheTimeThatIsGiven) {
  EXPECT_EQ(user.run({"doctor", "--close-open", "10m"}).status, 0);
  EXPECT_EQ(endOf("First"), "09:10");
  EXPECT_EQ(endOf("Third"), "13:10");
  EXPECT_EQ(user.run({"doctor", "--close-open"}).output, "No session was left open.\n");
}

TEST_F(OpenSessions, NeverReachIntoTheNextOne) {
  EXPECT_EQ(user.run({"doctor", "--close-open", "5h"}).status, 0);
  EXPECT_EQ(endOf("First"), "11:00");
  EXPECT_EQ(endOf("Third"), "18:00");
}

TEST_F(OpenSessions, StayOpenForATimeThatCannotBeRead) {
  EXPECT_EQ(user.run({"doctor", "--close-open", "soon"}).status, 2);
  EXPECT_EQ(endOf("First"), "NULL");
}

TEST_F(OpenSessions, OfARunningRecorderAreNotTouched) {
  const RecorderLock recorder(user);
  addSession(user, "Fourth", "2100-01-01T00:00:00Z", nullptr);  // begun since the recorder was
  EXPECT_TRUE(shows(user.run({"doctor"}), "BAD  2 sessions were left open"));
  EXPECT_EQ(user.run({"doctor", "--close-open"}).status, 0);
  EXPECT_EQ(endOf("First"), "11:00");
  EXPECT_EQ(endOf("Third"), "00:00");
  EXPECT_EQ(endOf("Fourth"), "NULL");
  EXPECT_EQ(user.run({"doctor", "--close-open", "10m"}).output, "No session was left open.\n");
  EXPECT_EQ(endOf("Fourth"), "NULL");
}

}  // namespace
}  // namespace tessum
