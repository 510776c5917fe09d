#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

class Backup : public testing::Test {
 protected:
  Backup() {
    { const Database made = user.database(); }
    Sql(user.historyPath())
        .run(
            "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 299) "
            "INSERT INTO activities (app_name, title, start_time) "
            "SELECT 'Editor', printf('%.500c', 'x'), 1000 + i FROM n;");
  }

  User user;
};

TEST_F(Backup, IsTheWholeHistoryForTheUserAlone) {
  const std::string copy = user.file("copy.db");
  const Outcome outcome = user.run({"backup", copy});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  Sql sql(copy);
  EXPECT_EQ(sql.row("SELECT COUNT(*) FROM activities"), "300");
  EXPECT_EQ(sql.row("PRAGMA integrity_check"), "ok");
  struct stat status {};
  ASSERT_EQ(stat(copy.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(Backup, GoesOnWhileAnotherOneReadsAndIsInTheMiddleOfWriting) {
  Sql other(user.historyPath());
  other.run("BEGIN IMMEDIATE; DELETE FROM activities;");
  const std::string copy = user.file("copy.db");
  EXPECT_EQ(user.run({"backup", copy}).status, 0);
  EXPECT_EQ(Sql(copy).row("SELECT COUNT(*) FROM activities"), "300");
}

TEST_F(Backup, LeavesAFileThatExistsAlone) {
  const std::string copy = user.file("copy.db");
  writeFile(copy, "precious");
  const Outcome outcome = user.run({"backup", copy});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find(std::strerror(EEXIST)), std::string::npos) << outcome.errors;
  EXPECT_EQ(readFile(copy), "precious");
  EXPECT_EQ(user.run({"backup", user.historyPath()}).status, 1);
  EXPECT_EQ(Sql(user.historyPath()).row("SELECT COUNT(*) FROM activities"), "300");
}

TEST_F(Backup, LeavesNothingBehindWhenItFails) {
  const std::string copy = user.file("copy.db");
  {
    Sql other(user.historyPath());
    other.run("BEGIN EXCLUSIVE;");
    const Outcome outcome = user.run({"backup", copy});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errors.find(sqliteText(SQLITE_BUSY)), std::string::npos) << outcome.errors;
  }
  EXPECT_FALSE(std::filesystem::exists(copy));

  std::string bytes = readFile(user.historyPath());
  for (std::size_t i = 4096; i < bytes.size(); ++i) bytes[i] = '\x5a';
  writeFile(user.historyPath(), bytes);
  EXPECT_EQ(user.run({"backup", copy}).status, 1);
  EXPECT_FALSE(std::filesystem::exists(copy));

  EXPECT_EQ(user.run({"backup", user.file("missing/copy.db")}).status, 1);
}

}  // namespace
}  // namespace tessum
