#include <gtest/gtest.h>

#include <filesystem>

#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

TEST(Note, BeginsTheRecordWhereThereIsNone) {
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
                    BadNote{"TextAndEnd", {"note", "x", "--end"}, "--end"}),
    [](const auto& note) { return note.param.name; });

TEST(Note, KeepsTextThatIsNotUtf8Readable) {
  const User user;
  ASSERT_EQ(user.run({"note", "caf\xE9"}).status, 0);
  EXPECT_EQ(user.database().currentAnnotation()->text, "caf\uFFFD");
}

}  // namespace
}  // namespace tessum
