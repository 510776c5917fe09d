#include <gtest/gtest.h>

#include <filesystem>

#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

class Forget : public testing::Test {
 protected:
  Forget() {
    Database database = user.database();
    user.addSession("Editor", "Secret_plan", "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
    user.addSession("Editor", "other", "2025-03-05T09:00:00Z", "2025-03-05T09:30:00Z");
    user.addSession("Browser", "the SECRET_PLAN", "2025-03-05T10:00:00Z", "2025-03-05T10:30:00Z");
    user.addSession("Browser", "SecretXplan", "2025-03-06T10:00:00Z", "2025-03-06T10:30:00Z");
    database.insertAnnotation(
        {.id = {}, .text = "Work", .startedAt = at("2025-03-05T08:00:00Z"), .endedAt = {}});
  }

  // The remaining numbers of sessions and notes.
  std::string left() {
    return Sql(user.historyPath())
        .row("SELECT (SELECT COUNT(*) FROM activities), (SELECT COUNT(*) FROM annotations)");
  }

  User user;
};

TEST_F(Forget, SaysWhatAndAsksFirst) {
  const Outcome no = user.run({"forget", "--from", "2025-03-05", "--to", "2025-03-05"}, "n\n");
  EXPECT_EQ(no.status, 1);
  EXPECT_EQ(no.output,
            "This deletes 2 sessions (1h 0m) and 1 note, begun on 2025-03-05.\n"
            "It cannot be undone. Delete? [y/N] Nothing was deleted.\n");
  EXPECT_EQ(left(), "4|1");
  const Outcome yes = user.run({"forget", "--from", "2025-03-05", "--to", "2025-03-05"}, "y\n");
  EXPECT_EQ(yes.status, 0);
  EXPECT_EQ(left(), "2|0");
}

TEST_F(Forget, TakesAPeriod) {
  EXPECT_EQ(user.run({"forget", "2025-03-05..2025-03-06", "--app", "Browser", "--yes"}).status, 0);
  EXPECT_EQ(left(), "2|1");
  EXPECT_EQ(user.run({"forget", "2025-W10", "--yes"}).status, 0);
  EXPECT_EQ(left(), "0|0");
}

TEST_F(Forget, TheEndOfTheInputSaysNo) {
  EXPECT_EQ(user.run({"forget", "--app", "Editor"}).status, 1);
  EXPECT_EQ(left(), "4|1");
}

TEST_F(Forget, AnApplicationIsMeantByItsExactName) {
  EXPECT_EQ(user.run({"forget", "--app", "edit", "--yes"}).output,
            "Nothing of that kind is in the history.\n");
  const Outcome outcome = user.run({"forget", "--app", "Editor", "--yes"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output,
            "This deletes 2 sessions (1h 30m) of Editor, begun from 2025-03-04 to 2025-03-05.\n"
            "Deleted.\n");
  EXPECT_EQ(left(), "2|1");
}

TEST_F(Forget, ATitleIsMeantAsItIsWritten) {
  EXPECT_EQ(user.run({"forget", "--title", "secret_plan", "--yes"}).status, 0);
  EXPECT_EQ(left(), "2|1");
  EXPECT_EQ(Sql(user.historyPath()).row("SELECT title FROM activities WHERE app_name = 'Browser'"),
            "SecretXplan");
}

TEST_F(Forget, ConditionsNarrowEachOther) {
  EXPECT_EQ(user.run({"forget", "--from", "2025-03-05", "--to", "2025-03-06", "--app", "Browser",
                      "--title", "secret_", "--yes"})
                .status,
            0);
  EXPECT_EQ(left(), "3|1");
}

TEST_F(Forget, NoByteOfItStaysInTheFile) {
  ASSERT_NE(readFile(user.historyPath()).find("Secret_plan"), std::string::npos);
  ASSERT_EQ(user.run({"forget", "--app", "Editor", "--yes"}).status, 0);
  EXPECT_EQ(readFile(user.historyPath()).find("Secret_plan"), std::string::npos);
}

// Rows move between the pages of a large history, and leave copies behind.
TEST_F(Forget, NoByteOfItStaysInALargeFile) {
  Sql(user.historyPath()).run(R"(
      WITH RECURSIVE number(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM number WHERE i < 6000)
      INSERT INTO activities (app_name, title, start_time, end_time)
      SELECT printf('Player %02d', i % 7), printf('Song %02d', i % 17), 20 * i, 20 * i + 9
      FROM number;)");
  for (int i = 0; i < 7; ++i) {
    const std::string app = "Player 0" + std::to_string(i);
    ASSERT_NE(readFile(user.historyPath()).find(app), std::string::npos);
    ASSERT_EQ(user.run({"forget", "--app", app, "--yes"}).status, 0);
    EXPECT_EQ(readFile(user.historyPath()).find(app), std::string::npos) << app;
  }
}

TEST_F(Forget, NothingIsForgottenUnlessItIsNamed) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"forget", "--yes"},
        {"forget", "--from", "today", "--yes"},
        {"forget", "--to", "today", "--yes"},
        {"forget", "--app", "", "--yes"},
        {"forget", "", "--app", "Editor", "--yes"},
        {"forget", "2025-03-05", "--to", "2025-03-06", "--yes"},
        {"forget", "2025-03-05", "--hidden", "--yes"},
        {"forget", "--from", "2025-03-06", "--to", "2025-03-05", "--yes"}}) {
    const Outcome outcome = user.run(arguments);
    EXPECT_EQ(outcome.status, 2) << testing::PrintToString(arguments);
    EXPECT_TRUE(outcome.errors.starts_with("Tessum: ")) << outcome.errors;
  }
  EXPECT_EQ(left(), "4|1");
}

TEST_F(Forget, EveryLetterMayBeCapitalOrSmall) {
  for (const char* title :
       {"\u00c4pfel", "\u00e4PFEL", "\u03a3\u039f\u03a6\u039f\u03a3", "Apfel"}) {
    user.addSession("Shop", title, "2025-03-07T10:00:00Z", "2025-03-07T10:30:00Z");
  }
  EXPECT_TRUE(
      contains(user.run({"forget", "--title", "\u00e4pfel", "--yes"}).output, "2 sessions"));
  EXPECT_TRUE(
      contains(user.run({"forget", "--title", "\u03c3\u03bf\u03c6\u03bf\u03c2", "--yes"}).output,
               "1 session "));
  EXPECT_EQ(left(), "5|1");
}

TEST_F(Forget, NoCharacterStandsForOthers) {
  for (const char* text : {"%", "secret%", ".", "Secret.plan", "s.*", "(?i)secret"}) {
    EXPECT_EQ(user.run({"forget", "--title", text, "--yes"}).output,
              "Nothing of that kind is in the history.\n")
        << text;
  }
}

TEST_F(Forget, TheTimelineOfTheBrowserGoesToo) {
  const std::string page = user.dataFolder() + "/timeline.html";
  writeFile(page, "Secret_plan");
  ASSERT_EQ(user.run({"forget", "--app", "Nobody", "--yes"}).status, 0);
  EXPECT_EQ(readFile(page), "Secret_plan");
  ASSERT_EQ(user.run({"forget", "--app", "Editor", "--yes"}).status, 0);
  EXPECT_FALSE(std::filesystem::exists(page));
}

}  // namespace
}  // namespace tessum
