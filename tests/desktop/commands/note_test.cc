#include <gtest/gtest.h>

#include <filesystem>

#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

TEST(Note, BeginsTheHistoryWhereThereIsNone) {
  const User user;
  const Outcome outcome = user.run({"note", "  Fixing bug \n"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(outcome.output.starts_with("Note started: Fixing bug (since ")) << outcome.output;
  const auto current = user.database().currentAnnotation();
  ASSERT_TRUE(current);
  EXPECT_EQ(current->text, "Fixing bug");
}

TEST(Note, StartsInThePastAndEndsTheOneBefore) {
  const User user;
  ASSERT_EQ(user.run({"note", "first", "--for", "3h"}).status, 0);
  ASSERT_EQ(user.run({"note", "second", "--for", "1h30m"}).status, 0);
  Sql sql(user.historyPath());
  EXPECT_EQ(sql.row("SELECT text FROM annotations WHERE ended_at IS NULL"), "second");
  EXPECT_EQ(sql.row("SELECT a.ended_at = b.started_at FROM annotations a, annotations b "
                    "WHERE a.text = 'first' AND b.text = 'second'"),
            "1");
  EXPECT_EQ(sql.row("SELECT abs(strftime('%s','now') - 5400 - started_at) < 60 FROM annotations "
                    "WHERE text = 'second'"),
            "1");
}

TEST(Note, TakesThePlaceOfOneThatBeganLater) {
  const User user;
  ASSERT_EQ(user.run({"note", "early", "--for", "1h"}).status, 0);
  ASSERT_EQ(user.run({"note", "late"}).status, 0);
  const Outcome outcome = user.run({"note", "between", "--for", "10m"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, "It takes the place of late, begun at "));
  EXPECT_EQ(Sql(user.historyPath())
                .rows("SELECT text, ended_at IS NULL, COALESCE(ended_at, started_at) >= started_at "
                      "FROM annotations ORDER BY started_at"),
            (std::vector<std::string>{"early|0|1", "between|1|1"}));
}

TEST(Note, EndsTheCurrentOne) {
  const User user;
  ASSERT_EQ(user.run({"note", "Fixing bug"}).status, 0);
  const Outcome outcome = user.run({"note", "--end"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "Note ended: Fixing bug\n");
  EXPECT_FALSE(user.database().currentAnnotation());
  EXPECT_EQ(user.run({"note", "--end"}).output, "There is no note to end.\n");
}

struct BadNote {
  const char* name;
  std::vector<std::string> arguments;
  const char* complaint;
};

class BadNotes : public testing::TestWithParam<BadNote> {};

TEST_P(BadNotes, ChangeNothing) {
  const User user;
  ASSERT_EQ(user.run({"note", "before"}).status, 0);
  const Outcome outcome = user.run(GetParam().arguments);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  EXPECT_TRUE(outcome.errors.starts_with("Tessum: ")) << outcome.errors;
  EXPECT_NE(outcome.errors.find(GetParam().complaint), std::string::npos) << outcome.errors;
  const auto current = user.database().currentAnnotation();
  ASSERT_TRUE(current);
  EXPECT_EQ(current->text, "before");
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, BadNotes,
    testing::Values(BadNote{"NoText", {"note"}, "say what you are working on"},
                    BadNote{"OnlyBlanks", {"note", "   "}, "say what you are working on"},
                    BadNote{"Fraction", {"note", "x", "--for", "1.5h"}, "unknown duration"},
                    BadNote{"Word", {"note", "x", "--for", "long"}, "unknown duration"},
                    BadNote{"Zero", {"note", "x", "--for", "0m"}, "unknown duration"},
                    BadNote{"LooseDigits", {"note", "x", "--for", "1h30"}, "unknown duration"},
                    BadNote{"UnitTwice", {"note", "x", "--for", "1h1h"}, "unknown duration"},
                    BadNote{"Millennia", {"note", "x", "--for", "99999999h"}, "too long"},
                    BadNote{"NoTimes", {"note", "x", "--at", "noon"}, "unknown times"},
                    BadNote{"EqualTimes", {"note", "x", "--at", "9:00-9:00"}, "unknown times"},
                    BadNote{"ManyDays", {"note", "x", "--at", "2025 9:00-9:30"}, "on one day"},
                    BadNote{"UnknownDay", {"note", "x", "--at", "soon 9:00-9:30"}, "period"},
                    BadNote{"NoTextThen", {"note", "--at", "9:00-9:30"}, "say what"},
                    BadNote{"AtAndFor", {"note", "x", "--at", "9:00-9:30", "--for", "5m"}, "--for"},
                    BadNote{"NoChange", {"note", "--edit", "1"}, "say what"},
                    BadNote{"TextAndDelete", {"note", "x", "--delete", "1"}, "--delete"},
                    BadNote{"NoNumber", {"note", "--delete", "x"}, "--delete"},
                    BadNote{"TextAndEnd", {"note", "x", "--end"}, "--end"}),
    [](const auto& note) { return note.param.name; });

TEST(Note, TakesAllItsWords) {
  const User user;
  ASSERT_EQ(user.run({"note", "fix", "the", "--for", "5m", " bug"}).status, 0);
  EXPECT_EQ(user.database().currentAnnotation()->text, "fix the  bug");
}

// The notes by their begin, as text, hour and minute of begin and end, and the difference in days.
std::vector<std::string> notesOf(const User& user) {
  return Sql(user.historyPath())
      .rows(
          "SELECT id, text, strftime('%Y-%m-%d %H:%M', started_at, 'unixepoch'), "
          "strftime('%Y-%m-%d %H:%M', ended_at, 'unixepoch') FROM annotations "
          "ORDER BY started_at");
}

TEST(Note, IsAddedMovedChangedAndDeletedAfterwards) {
  const User user;
  const Outcome added =
      user.run({"note", "Lunch", "with", "Ada", "--at", "2025-03-04 12:00-13:00"});
  EXPECT_EQ(added.output, "Note added: Lunch with Ada (2025-03-04 12:00-13:00)\n") << added.errors;
  EXPECT_EQ(user.run({"note", "Night", "--at", "2025-03-04 23:30-0:30"}).output,
            "Note added: Night (2025-03-04 23:30-2025-03-05 00:30)\n");
  EXPECT_EQ(user.run({"note", "--edit", "1", "Lunch", "with", "Bob"}).output,
            "Note 1 is now: Lunch with Bob (2025-03-04 12:00-13:00)\n");
  EXPECT_EQ(user.run({"note", "--edit", "1", "--at", "12:30-14:00"}).output,
            "Note 1 is now: Lunch with Bob (2025-03-04 12:30-14:00)\n");
  EXPECT_EQ(notesOf(user),
            (std::vector<std::string>{"1|Lunch with Bob|2025-03-04 12:30|2025-03-04 14:00",
                                      "2|Night|2025-03-04 23:30|2025-03-05 00:30"}));
  EXPECT_TRUE(contains(user.run({"notes", "2025-03-04"}).output, "  1  12:30  "));
  EXPECT_EQ(user.run({"note", "--delete", "1"}).output,
            "Deleted: note 1, \"Lunch with Bob\", 2025-03-04 12:30-14:00\n");
  EXPECT_EQ(notesOf(user).size(), 1U);
  EXPECT_EQ(user.run({"note", "--edit", "1", "x"}).status, 1);
  EXPECT_TRUE(contains(user.run({"note", "--delete", "1"}).errors, "there is no note 1"));
}

TEST(Note, IsOfTodayWhereNoDayIsNamed) {
  const User user;
  ASSERT_EQ(user.run({"note", "x", "--at", "10:00-11:30"}).status, 0);
  EXPECT_EQ(Sql(user.historyPath())
                .row("SELECT date(started_at, 'unixepoch') = date('now'), ended_at - started_at "
                     "FROM annotations"),
            "1|5400.0");
}

TEST(Note, ThatWouldOverlapAnotherIsRefused) {
  const User user;
  ASSERT_EQ(user.run({"note", "Lunch", "--at", "2025-03-04 12:00-13:00"}).status, 0);
  ASSERT_EQ(user.run({"note", "Work", "--at", "2025-03-04 13:00-14:00"}).status, 0) << "touches";
  ASSERT_EQ(user.run({"note", "open", "--for", "1h"}).status, 0);
  const auto before = notesOf(user);
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"x", "--at", "2025-03-04 12:59-13:30"},
        {"x", "--at", "2025-03-04 11:00-20:00"},
        {"--edit", "2", "--at", "12:30-12:40"}}) {
    std::vector<std::string> all{"note"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const Outcome outcome = user.run(all);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(
        contains(outcome.errors, "it would overlap note 1, \"Lunch\", 2025-03-04 12:00-13:00"));
  }
  EXPECT_EQ(notesOf(user), before);
  EXPECT_EQ(user.run({"note", "--edit", "2", "--at", "13:10-14:10"}).status, 0) << "its own time";
}

TEST(Note, ThatIsOverIsNotShortenedByANewOne) {
  const User user;
  ASSERT_EQ(user.run({"note", "over", "--for", "1h"}).status, 0);
  ASSERT_EQ(user.run({"note", "--end"}).status, 0);
  const auto before = notesOf(user);
  const Outcome outcome = user.run({"note", "new", "--for", "30m"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.errors, "it would overlap note 1, \"over\""));
  EXPECT_EQ(notesOf(user), before);
}

TEST(Note, KeepsTextThatIsNotUtf8Readable) {
  const User user;
  ASSERT_EQ(user.run({"note", "caf\xE9"}).status, 0);
  EXPECT_EQ(user.database().currentAnnotation()->text, "caf\uFFFD");
}

}  // namespace
}  // namespace tessum
