#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <string>

#include "core/base/limits.h"
#include "core/http/http_response.h"
#include "tests/desktop/loopback_server.h"
#include "tests/desktop/recorder_lock.h"
#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

TEST(Doctor, FindsTheHistorySound) {
  const User user;
  user.addSession("Editor", nullptr, "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  const Outcome outcome = user.run({"doctor"});
  EXPECT_TRUE(
      contains(outcome.output, "ok   The folder " + user.dataFolder() + " can be written to."));
  EXPECT_TRUE(contains(outcome.output, "ok   The history " + user.historyPath() + " is sound."));
  EXPECT_TRUE(contains(outcome.output, "ok   No session was left open."));
}

TEST(Doctor, FindsNothingWrongWithAHistoryThatIsYetToCome) {
  const User user;
  EXPECT_TRUE(contains(user.run({"doctor"}).output, "ok   There is no history yet"));
  EXPECT_FALSE(std::filesystem::exists(user.dataFolder()));
}

TEST(Doctor, FindsAFolderThatCannotBeWrittenTo) {
  const User user;
  std::filesystem::create_directories(user.dataFolder());
  chmod(user.dataFolder().c_str(), 0500);
  const Outcome outcome = user.runWithoutPowers({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(
      contains(outcome.output, "BAD  The folder " + user.dataFolder() + " cannot be written to."));
  EXPECT_TRUE(contains(outcome.output, "chmod u+rwx"));
  chmod(user.dataFolder().c_str(), 0700);
}

TEST(Doctor, FindsAFileInThePlaceOfTheFolder) {
  const User user;
  writeFile(user.file("data"), "");
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, "is not a folder"));
}

TEST(Doctor, FindsAHistoryThatIsReadOnlyOrCannotBeRead) {
  const User user;
  user.addSession("Editor", nullptr, "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  chmod(user.historyPath().c_str(), 0400);
  EXPECT_TRUE(contains(user.runWithoutPowers({"doctor"}).output, "is read-only."));
  chmod(user.historyPath().c_str(), 0);
  const Outcome outcome = user.runWithoutPowers({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, sqliteText(SQLITE_CANTOPEN)));
  EXPECT_TRUE(contains(outcome.output, "Give yourself read and write access"));
}

TEST(Doctor, FindsALock) {
  const User user;
  user.addSession("Editor", nullptr, "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  Sql other(user.historyPath());
  other.run("BEGIN EXCLUSIVE;");
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, sqliteText(SQLITE_BUSY)));
  EXPECT_TRUE(contains(outcome.output, "Another program is using the history."));
}

TEST(Doctor, FindsDamage) {
  const User user;
  user.addSession("Editor", nullptr, "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  {
    // An index that lacks a row: reads still succeed.
    Sql sql(user.historyPath());
    sql.run(
        "PRAGMA writable_schema = ON;"
        "UPDATE sqlite_master SET rootpage = (SELECT rootpage FROM sqlite_master WHERE name = "
        "'idx_annotations_started') WHERE name = 'idx_activities_app';");
  }
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, "BAD  The history is damaged: "));
  EXPECT_TRUE(contains(outcome.output, "Tessum backup"));
}

TEST(Doctor, FindsAnAssistantsFileThatIsDamaged) {
  const User user;
  const std::string file = user.file(".cursor/mcp.json");
  std::filesystem::create_directories(user.file(".cursor"));
  const std::string content = "{\n  // mine\n  \"mcpServers\": {},\n";
  writeFile(file, content);
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, "BAD  Cursor: " + file + " cannot be made out: "));
  EXPECT_TRUE(contains(outcome.output, "Fix the file, or see what \"Tessum install cursor\""));
  EXPECT_EQ(readFile(file), content);
}

TEST(Doctor, FindsARegisteredProgramThatIsGone) {
  const User user;
  ASSERT_EQ(user.run({"install", "Cursor", "Claude Desktop"}).status, 0);
  const std::string entry =
      R"({"mcpServers": {"tessum": {"command": "/nowhere/TessumMCP", "args": []}}})";
  writeFile(user.file(".cursor/mcp.json"), entry);
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, "BAD  Cursor: the entry in " +
                                           user.file(".cursor/mcp.json") +
                                           " does not work: its program is missing."));
  EXPECT_TRUE(contains(outcome.output, "Register again: Tessum install cursor"));
  EXPECT_TRUE(contains(outcome.output, "ok   Claude Desktop is registered in "));
  ASSERT_EQ(user.run({"install", "Cursor"}).status, 0);
  EXPECT_TRUE(contains(user.run({"doctor"}).output, "ok   Cursor is registered in "));
}

TEST(Doctor, FindsThePortTaken) {
  const User user;
  LoopbackServer server(limits::kDefaultPort);
  if (!server.isBound()) GTEST_SKIP() << "the endpoint's port is taken";
  EXPECT_TRUE(contains(user.run({"doctor"}).output, "ok   The port 7384 is free"));
  server.answerWith("HTTP/1.1 200 OK\r\n\r\nsomething else");
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, "BAD  Another program uses port 7384"));
  EXPECT_TRUE(contains(outcome.output, "ss -ltnp"));
}

TEST(Doctor, FindsItsOwnEndpointThatAnswers) {
  const User user;
  LoopbackServer server(limits::kDefaultPort);
  if (!server.isBound()) GTEST_SKIP() << "the endpoint's port is taken";
  server.answerWith("HTTP/1.1 200 OK\r\n\r\n" + std::string(kGreeting));
  EXPECT_TRUE(contains(user.run({"doctor"}).output,
                       "ok   The endpoint http://localhost:7384/mcp answers."));
}

#ifndef __APPLE__
TEST(Doctor, FindsThatThereIsNoDisplay) {
  const User user;
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, "BAD  "));
  EXPECT_TRUE(contains(outcome.output, "Run \"Tessum record\" in a desktop session"));
}
#endif

class OpenSessions : public testing::Test {
 protected:
  OpenSessions() {
    user.addSession("First", nullptr, "2025-03-04T09:00:00Z", nullptr);
    user.addSession("Second", nullptr, "2025-03-04T11:00:00Z", "2025-03-04T12:00:00Z");
    user.addSession("Third", nullptr, "2025-03-04T13:00:00Z", nullptr);
  }

  std::string endOf(const std::string& app) {
    return Sql(user.historyPath())
        .row("SELECT strftime('%H:%M', end_time, 'unixepoch') FROM activities WHERE app_name = '" +
             app + "'");
  }

  User user;
};

TEST_F(OpenSessions, AreFoundAndNotTouched) {
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output,
                       "BAD  1 session was left open by a recorder that was cut off, on "
                       "2025-03-04."));
  EXPECT_TRUE(contains(outcome.output,
                       "BAD  1 session was left open because the history could not be written, the "
                       "oldest on 2025-03-04."));
  EXPECT_EQ(endOf("First"), "NULL");
}

TEST_F(OpenSessions, EndWhereTheNextOneBegan) {
  const Outcome outcome = user.run({"doctor", "--close-open"});
  EXPECT_EQ(endOf("First"), "11:00");
  EXPECT_EQ(endOf("Second"), "12:00");
  EXPECT_EQ(endOf("Third"), "NULL") << "nothing says when it ended";
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, "Third of 2025-03-04 13:00 stays open"));
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
  // Begun since the recorder was.
  user.addSession("Fourth", nullptr, "2100-01-01T00:00:00Z", nullptr);
  EXPECT_TRUE(contains(user.run({"doctor"}).output, "BAD  2 sessions were left open"));
  EXPECT_EQ(user.run({"doctor", "--close-open"}).status, 1);
  EXPECT_EQ(endOf("First"), "11:00");
  EXPECT_EQ(endOf("Third"), "NULL") << "the night would be one long session";
  EXPECT_EQ(endOf("Fourth"), "NULL");
  EXPECT_EQ(user.run({"doctor", "--close-open", "10m"}).status, 0);
  EXPECT_EQ(endOf("Third"), "13:10");
  EXPECT_EQ(user.run({"doctor", "--close-open", "10m"}).output, "No session was left open.\n");
  EXPECT_EQ(endOf("Fourth"), "NULL");
}

TEST_F(OpenSessions, EndWhereTheirRecorderWasLastKnownToLive) {
  const std::string lock = user.dataFolder() + "/recorder.lock";
  { const RecorderLock recorder(user, {.since = at("2025-03-04T12:30:00Z")}); }
  const double lastSign = at("2025-03-04T13:42:30Z").secondsSince1970;
  const std::array<timespec, 2> times{timespec{static_cast<time_t>(lastSign), 0},
                                      timespec{static_cast<time_t>(lastSign), 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, lock.c_str(), times.data(), 0), 0);
  EXPECT_EQ(user.run({"doctor", "--close-open"}).status, 0);
  EXPECT_EQ(endOf("First"), "11:00");
  EXPECT_EQ(endOf("Third"), "13:42");
}

TEST(Doctor, FindsFilesThatOthersMayReadAndMendsThem) {
  const User user;
  user.addSession("Editor", nullptr, "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  const std::string found = "Other users can read or change " + user.historyPath();
  EXPECT_FALSE(contains(user.run({"doctor"}).output, found));
  EXPECT_EQ(user.run({"doctor", "--mend"}).output, "No file is open to other users.\n");
  chmod(user.historyPath().c_str(), 0644);
  const Outcome outcome = user.run({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.output, "BAD  " + found));
  const Outcome mended = user.run({"doctor", "--mend"});
  EXPECT_EQ(mended.status, 0);
  EXPECT_EQ(mended.output, user.historyPath() + " is now closed to other users.\n");
  EXPECT_FALSE(contains(user.run({"doctor"}).output, found));
}

}  // namespace
}  // namespace tessum
