// The reports for people, and the reports of the tools behind --plain.

#include <gtest/gtest.h>

#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

// A day with three sessions of two applications and a note, and a session on the day after.
class Reports : public testing::Test {
 protected:
  Reports() {
    Database database = user.database();
    database.insert({.id = {},
                     .appName = "Editor",
                     .bundleID = "org.example.editor",
                     .title = "main.cc",
                     .startTime = at("2025-03-04T09:15:00Z"),
                     .endTime = at("2025-03-04T10:15:00Z")});
    database.insert({.id = {},
                     .appName = "Browser",
                     .bundleID = {},
                     .title = "Pull request 42",
                     .startTime = at("2025-03-04T10:15:00Z"),
                     .endTime = at("2025-03-04T10:45:00Z")});
    database.insert({.id = {},
                     .appName = "Editor",
                     .bundleID = "org.example.editor",
                     .title = {},
                     .startTime = at("2025-03-04T23:50:00Z"),
                     .endTime = at("2025-03-05T00:20:00Z")});
    database.insert({.id = {},
                     .appName = "Terminal",
                     .bundleID = {},
                     .title = "make",
                     .startTime = at("2025-03-05T08:00:00Z"),
                     .endTime = at("2025-03-05T08:00:42Z")});
    database.insertAnnotation({.id = {},
                               .text = "Review of the budget",
                               .startedAt = at("2025-03-04T09:00:00Z"),
                               .endedAt = {}});
    database.endCurrentAnnotation(at("2025-03-04T10:30:00Z"));
  }

  User user;
};

TEST_F(Reports, DayShowsNotesSharesAndSessionsInTheirOrder) {
  const Outcome outcome = user.run({"day", "2025-03-04"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(outcome.output,
            "Tuesday, 4 March 2025  1h 40m in 3 sessions\n"
            "\n"
            "Notes\n"
            "  1  09:00  10:30  1h 30m  Review of the budget\n"
            "\n"
            "Applications\n"
            "  Editor   1h 10m  70%  2 sessions  ████████████████████████\n"
            "  Browser     30m  30%   1 session  ██████████▎\n"
            "\n"
            "Sessions\n"
            "  09:15  10:15   1h 0m  Editor   main.cc\n"
            "  10:15  10:45  30m 0s  Browser  Pull request 42\n"
            "  10:45  23:50  13h 5m  away\n"
            "  23:50  00:00  10m 0s  Editor\n");
}

TEST_F(Reports, ASessionOverMidnightIsCutThere) {
  EXPECT_TRUE(contains(user.run({"day", "2025-03-05"}).output, "  00:00  00:20  20m 0s  Editor\n"));
  EXPECT_EQ(linesOf(user.run({"usage", "2025-03-05"}).output).front(),
            "Wednesday, 5 March 2025  20m in 2 sessions");
  EXPECT_TRUE(contains(user.run({"search", "Editor", "--in", "2025-03-05"}).output,
                       "  2025-03-05  00:00  20m  1 session  Editor\n"));
  EXPECT_EQ(user.run({"search", "Editor", "--in", "2025-03-06"}).output, "Nothing was found.\n");
}

TEST_F(Reports, ANightBelongsToOneDayWhereDaysBeginInTheMorning) {
  user.writeSettings("[reports]\nday-starts = '04:00'\n");
  EXPECT_EQ(linesOf(user.run({"day", "2025-03-04"}).output).back(),
            "  23:50  00:20  30m 0s  Editor");
  EXPECT_FALSE(contains(user.run({"day", "2025-03-05"}).output, "Editor"));
  EXPECT_TRUE(contains(user.run({"day", "2025-03-05", "--plain"}).output, "Activities (1 "));
}

TEST_F(Reports, SeveralDaysComeOneAfterTheOther) {
  const std::string output = user.run({"day", "2025-03-01..2025-03-31"}).output;
  EXPECT_EQ(output,
            user.run({"day", "2025-03-04"}).output + "\n" + user.run({"day", "2025-03-05"}).output);
  EXPECT_EQ(user.run({"day", "2024-01"}).output,
            "Monday, 1 January 2024 to Wednesday, 31 January 2024\n"
            "\n"
            "Nothing was recorded on these days.\n");
  EXPECT_EQ(user.run({"notes", "2025-03"}).output,
            "Saturday, 1 March 2025 to Monday, 31 March 2025\n"
            "\n"
            "  1  2025-03-04 09:00  2025-03-04 10:30  1h 30m  Review of the budget\n");
  EXPECT_EQ(user.run({"day", "2025-03", "--plain"}).status, 2);
}

TEST_F(Reports, UsageShowsABarForEachShare) {
  const Outcome outcome = user.run({"usage", "2025-03-04"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output,
            "Tuesday, 4 March 2025  1h 40m in 3 sessions\n"
            "\n"
            "  Editor   1h 10m  70%  2 sessions  ████████████████████████\n"
            "  Browser     30m  30%   1 session  ██████████▎\n");
}

TEST_F(Reports, NotesOfADayThatTheyReachIntoSayTheirDate) {
  EXPECT_EQ(user.run({"notes", "2025-03-04"}).output,
            "Tuesday, 4 March 2025\n"
            "\n"
            "  1  09:00  10:30  1h 30m  Review of the budget\n");
  user.set("TZ", "Etc/GMT-14");  // 14 hours east: 10:00 is midnight
  EXPECT_EQ(user.run({"notes", "2025-03-05"}).output,
            "Wednesday, 5 March 2025\n"
            "\n"
            "  1  2025-03-04 23:00  00:30  1h 30m  Review of the budget\n");
}

TEST_F(Reports, ADayShowsNoTimesAwayBetweenSomeOfItsSessions) {
  EXPECT_FALSE(contains(user.run({"day", "2025-03-04", "--app", "Editor"}).output, "away"));
  EXPECT_TRUE(contains(user.run({"day", "2025-03-04", "--app", "Music"}).output,
                       "\nNo such session was recorded on this day.\n"));
  user.addSession("Editor", nullptr, "2025-06-01T08:00:00Z", "2025-06-01T09:00:00Z");
  user.addSession("Other", nullptr, "2025-06-01T08:10:00Z", "2025-06-01T08:20:00Z");
  user.addSession("Editor", nullptr, "2025-06-01T09:00:59Z", "2025-06-01T10:00:00Z");
  EXPECT_FALSE(contains(user.run({"day", "2025-06-01"}).output, "away"));
}

TEST_F(Reports, TimesAndDaysAreThoseOfTheZone) {
  user.set("TZ", "Asia/Kolkata");  // five and a half hours ahead
  EXPECT_TRUE(contains(user.run({"day", "2025-03-04"}).output,
                       "  14:45  15:45   1h 0m  Editor   main.cc\n"));
  EXPECT_TRUE(contains(user.run({"day", "2025-03-05"}).output, "  05:20  05:50  30m 0s  Editor"));
}

TEST_F(Reports, PlainGivesTheTextOfTheTools) {
  EXPECT_EQ(user.run({"day", "2025-03-04", "--plain"}).output,
            "Activities (3 sessions):\n"
            "• Editor  [2025-03-04T23:50:00 → 2025-03-05T00:20:00]  (30m 0s)\n"
            "• Browser – Pull request 42  [2025-03-04T10:15:00 → 2025-03-04T10:45:00]  (30m 0s)\n"
            "• Editor – main.cc  [2025-03-04T09:15:00 → 2025-03-04T10:15:00]  (1h 0m)\n"
            "\n"
            "Annotations (1):\n"
            "• Review of the budget  [2025-03-04T09:00:00 → 2025-03-04T10:30:00]  (1h 30m)\n");
  EXPECT_EQ(user.run({"usage", "2025-03-04", "--plain"}).output,
            "App usage summary (2 apps):\n"
            "• Editor: 1h 30m across 2 session(s)\n"
            "• Browser: 30m across 1 session(s)\n");
  EXPECT_EQ(user.run({"notes", "2025-03-04", "--plain"}).output,
            "Annotations (1):\n"
            "• Review of the budget  [2025-03-04T09:00:00 → 2025-03-04T10:30:00]  (1h 30m)\n");
  EXPECT_EQ(user.run({"search", "make", "--plain"}).output,
            "Activities (1 sessions):\n"
            "• Terminal – make  [2025-03-05T08:00:00 → 2025-03-05T08:00:42]  (42s)\n");
}

TEST_F(Reports, ADayWithoutRecordsSaysSo) {
  EXPECT_TRUE(contains(user.run({"day", "2024-01-01"}).output, "Nothing was recorded"));
  EXPECT_TRUE(contains(user.run({"usage", "2024-01-01"}).output, "Nothing was recorded"));
  EXPECT_TRUE(contains(user.run({"notes", "2024-01-01"}).output, "no notes"));
  EXPECT_EQ(user.run({"day", "2024-01-01"}).status, 0);
}

TEST_F(Reports, TodayIsTheDayUnlessAnotherIsNamed) {
  const Date now = SystemClock().now();
  user.database().insert({.id = {},
                          .appName = "Ongoing",
                          .bundleID = {},
                          .title = {},
                          .startTime = now,
                          .endTime = {}});
  EXPECT_TRUE(contains(user.run({"day"}).output, "now"));
  EXPECT_TRUE(contains(user.run({"day", "today"}).output, "Ongoing"));
  EXPECT_FALSE(contains(user.run({"day", "yesterday"}).output, "Ongoing"));
}

TEST_F(Reports, ColumnsLineUpUnderWideAndCombiningCharacters) {
  user.addSession("日本", nullptr, "2025-06-01T08:00:00Z", "2025-06-01T09:00:00Z");
  user.addSession("Cafe\u0301", nullptr, "2025-06-01T09:00:00Z", "2025-06-01T09:30:00Z");
  EXPECT_EQ(user.run({"usage", "2025-06-01"}).output,
            "Sunday, 1 June 2025  1h 30m in 2 sessions\n"
            "\n"
            "  日本  1h 0m  67%  1 session  ████████████████████████\n"
            "  Cafe\u0301    30m  33%  1 session  ████████████\n");
}

TEST_F(Reports, ATitleCannotCommandTheTerminal) {
  user.database().insert({.id = {},
                          .appName = "Evil",
                          .bundleID = {},
                          .title = "a\x1b[2Jb\nc\x07\u202Ed",
                          .startTime = at("2025-06-01T08:00:00Z"),
                          .endTime = at("2025-06-01T09:00:00Z")});
  const std::string output = user.run({"day", "2025-06-01"}).output;
  EXPECT_TRUE(contains(output, "Evil  a\uFFFD[2Jb c\uFFFD\uFFFDd\n"));
}

TEST_F(Reports, ATerminalGetsColourAndLinesThatFit) {
  user.database().insert({.id = {},
                          .appName = "Long",
                          .bundleID = {},
                          .title = std::string(200, 'x'),
                          .startTime = at("2025-06-01T08:00:00Z"),
                          .endTime = at("2025-06-01T09:00:00Z")});
  const Outcome coloured = user.runOnTerminal({"day", "2025-06-01"}, 60);
  EXPECT_EQ(coloured.status, 0);
  EXPECT_TRUE(contains(coloured.output, "\x1b[1mLong\x1b[0m"));

  user.set("NO_COLOR", "1");
  const Outcome plain = user.runOnTerminal({"day", "2025-06-01"}, 60);
  EXPECT_FALSE(contains(plain.output, "\x1b["));
  EXPECT_EQ(linesOf(plain.output).back(),
            "  08:00  09:00  1h 0m  Long  " + std::string(30, 'x') + "…\r");

  const Outcome piped = user.run({"day", "2025-06-01"});
  EXPECT_TRUE(contains(piped.output, std::string(200, 'x')));
}

TEST_F(Reports, UsageAgreesWithTheToolsOnADayOfManyApplications) {
  {
    Database database = user.database();
    for (int i = 0; i < 60; ++i) {
      const double start = at("2025-07-01T08:00:00Z").secondsSince1970 + i * 600.0;
      database.insert({.id = {},
                       .appName = "App" + std::to_string(i % 7),
                       .bundleID = i % 2 == 0 ? std::optional<std::string>("id") : std::nullopt,
                       .title = {},
                       .startTime = {start},
                       .endTime = Date{start + 60.0 * (i % 11)}});
    }
  }
  const auto people = linesOf(user.run({"usage", "2025-07-01"}).output);
  const auto tools = linesOf(user.run({"usage", "2025-07-01", "--plain"}).output);
  EXPECT_EQ(people.size() - 2, tools.size() - 1);
  EXPECT_EQ(tools.size() - 1, 14U);
  for (std::size_t i = 1; i < tools.size(); ++i) {
    const std::string duration = tools[i].substr(
        tools[i].find(": ") + 2, tools[i].find(" across") - tools[i].find(": ") - 2);
    EXPECT_TRUE(contains(people[i + 1], " " + duration + " ")) << i;
  }
}

TEST_F(Reports, PlainTextCannotCommandTheTerminal) {
  user.addSession("Terminal", "\x1b]0;owned\x07", "2025-03-06T12:00:00Z", "2025-03-06T12:30:00Z");
  const std::vector<std::string> command{"day", "2025-03-06", "--plain"};
  const std::string onTerminal = user.runOnTerminal(command, 80).output;
  EXPECT_TRUE(contains(onTerminal, "\uFFFD]0;owned\uFFFD"));
  EXPECT_FALSE(contains(onTerminal, "\x1b"));
  EXPECT_TRUE(contains(user.run(command).output, "\x1b]0;owned\x07"));
}

TEST_F(Reports, ALongNamePadsNoOtherLine) {
  const std::string name(16000, 'x');
  user.addSession(name.c_str(), nullptr, "2025-03-06T10:00:00Z", "2025-03-06T10:30:00Z");
  user.addSession("Mail", "Inbox", "2025-03-06T11:00:00Z", "2025-03-06T11:30:00Z");
  const std::string inFile = user.run({"day", "2025-03-06"}).output;
  EXPECT_TRUE(contains(inFile, name));
  for (const std::string& line : linesOf(inFile)) {
    EXPECT_TRUE(line.size() < 200 || contains(line, name)) << line;
  }
  EXPECT_FALSE(contains(user.runOnTerminal({"day", "2025-03-06"}, 200).output, name));
}

}  // namespace
}  // namespace tessum
