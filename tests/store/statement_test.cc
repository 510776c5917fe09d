#include "core/store/statement.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>

#include "core/store/database_error.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

using Connection = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

class StatementTest : public testing::Test {
 protected:
  StatementTest() : db_(nullptr, &sqlite3_close) {
    sqlite3* db = nullptr;
    EXPECT_EQ(sqlite3_open(":memory:", &db), SQLITE_OK);
    db_.reset(db);
  }

  Connection db_;
};

using StatementDeathTest = StatementTest;

TEST_F(StatementTest, SaysWhyItCannotBePrepared) {
  try {
    Statement(db_.get(), "SELECT 1 FROM nowhere;");
    FAIL();
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.errorCase(), DatabaseError::Case::prepareFailed);
    EXPECT_EQ(error.code(), SQLITE_ERROR);
    EXPECT_EQ(error.description(),
              "Failed to prepare statement: " + Sql(":memory:").failureOf("SELECT 1 FROM nowhere"));
  }
}

TEST_F(StatementTest, SaysWhyItWasNotExecuted) {
  constexpr auto kTable = "CREATE TABLE t (x TEXT NOT NULL);";
  Statement(db_.get(), kTable).execute();
  try {
    Statement(db_.get(), "INSERT INTO t VALUES (?);").bind(std::optional<std::string>()).execute();
    FAIL();
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.errorCase(), DatabaseError::Case::executionFailed);
    EXPECT_EQ(error.code(), SQLITE_CONSTRAINT);
    EXPECT_EQ(error.description(),
              "Failed to execute statement: " +
                  Sql(":memory:").failureOf(kTable + std::string("INSERT INTO t VALUES (NULL);")));
  }
}

TEST_F(StatementTest, EndsATextAtItsFirstNul) {
  Statement statement(db_.get(), "SELECT ?;");
  statement.bind(std::string("a\0b", 3));
  ASSERT_TRUE(statement.nextRow());
  EXPECT_EQ(statement.text(0), "a");
}

TEST_F(StatementTest, MakesTextsValidUtf8) {
  Statement statement(db_.get(), "SELECT CAST(x'61FF62' AS TEXT), x'C3', x'', NULL;");
  ASSERT_TRUE(statement.nextRow());
  EXPECT_EQ(statement.text(0),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(statement.optionalText(1), "\xEF\xBF\xBD");
  EXPECT_EQ(statement.text(2), "");
  EXPECT_EQ(statement.optionalText(3), std::nullopt);
}

TEST_F(StatementTest, ReplacesTheTextsItReadsInto) {
  Statement statement(db_.get(), "SELECT 'new', 'new', NULL, 'new';");
  ASSERT_TRUE(statement.nextRow());
  std::string text = "old";
  statement.readText(0, text);
  EXPECT_EQ(text, "new");
  std::optional<std::string> optional = "old";
  statement.readText(1, optional);
  EXPECT_EQ(optional, "new");
  statement.readText(2, optional);
  EXPECT_EQ(optional, std::nullopt);
  statement.readText(3, optional);
  EXPECT_EQ(optional, "new");
}

TEST_F(StatementTest, KeepsTheFractionOfADate) {
  Statement statement(db_.get(), "SELECT ?, ?;");
  statement.bind(Date{1741082400.123456}).bind(std::optional<Date>());
  ASSERT_TRUE(statement.nextRow());
  EXPECT_EQ(statement.date(0), Date{1741082400.123456});
  EXPECT_EQ(statement.optionalDate(0), Date{1741082400.123456});
  EXPECT_EQ(statement.optionalDate(1), std::nullopt);
}

TEST_F(StatementTest, EndsAReadThatFailsWithoutAnError) {
  Statement statement(db_.get(), "SELECT 1 UNION ALL SELECT abs(-9223372036854775808);");
  EXPECT_TRUE(statement.nextRow());
  EXPECT_FALSE(statement.nextRow());
}

TEST_F(StatementTest, TakesLimitsOfThirtyTwoBits) {
  Statement statement(db_.get(), "SELECT ?, ?;");
  statement.bindLimit(2147483647).bindLimit(-2147483648LL);
  ASSERT_TRUE(statement.nextRow());
  EXPECT_EQ(statement.count(0), 2147483647);
  EXPECT_EQ(statement.rowID(1), -2147483648LL);
}

TEST_F(StatementDeathTest, StopsTheProcessForLimitsBeyondThem) {
  Statement statement(db_.get(), "SELECT ?;");
  EXPECT_DEATH(statement.bindLimit(2147483648LL), "a row limit outside the 32-bit range");
  EXPECT_DEATH(statement.bindLimit(-2147483649LL), "a row limit outside the 32-bit range");
}

TEST_F(StatementDeathTest, StopsTheProcessForNullWhereThereIsNone) {
  Statement statement(db_.get(), "SELECT NULL;");
  ASSERT_TRUE(statement.nextRow());
  EXPECT_DEATH(static_cast<void>(statement.text(0)), "NULL in a column that is never NULL");
}

}  // namespace
}  // namespace tessum
