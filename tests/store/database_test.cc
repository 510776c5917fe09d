#include "core/store/database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include "tests/support/sql.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

class DatabaseTest : public testing::Test {
 protected:
  const TemporaryFolder folder_;
  const std::string path_ = folder_.file("activities.db");
  const SystemCalendar calendar_{};
};

Activity session(const char* app, double start) {
  return {
      .id = {}, .appName = app, .bundleID = {}, .title = {}, .startTime = {start}, .endTime = {}};
}

TEST_F(DatabaseTest, CreatesTheSchemaAndNothingElse) {
  const Database database(path_, calendar_);
  EXPECT_EQ(database.path(), path_);
  Sql sql(path_);
  EXPECT_EQ(
      sql.rows("SELECT type, name, tbl_name FROM sqlite_master WHERE name NOT LIKE 'sqlite_%' "
               "ORDER BY rowid"),
      (std::vector<std::string>{
          "table|activities|activities", "index|idx_activities_start|activities",
          "index|idx_activities_app|activities", "table|annotations|annotations",
          "index|idx_annotations_started|annotations"}));
  EXPECT_EQ(sql.row("PRAGMA journal_mode"), "delete");
  EXPECT_EQ(sql.row("PRAGMA user_version"), "0");
  EXPECT_EQ(sql.row("SELECT sql FROM sqlite_master WHERE name = 'activities'"),
            "CREATE TABLE activities (\n"
            "    id         INTEGER PRIMARY KEY AUTOINCREMENT,\n"
            "    app_name   TEXT    NOT NULL,\n"
            "    bundle_id  TEXT,\n"
            "    title      TEXT,\n"
            "    start_time REAL    NOT NULL,\n"
            "    end_time   REAL,\n"
            "    created_at REAL    NOT NULL DEFAULT (strftime('%s','now'))\n"
            ")");
}

TEST_F(DatabaseTest, KeepsSchemaAndRowsWhenOpenedAgain) {
  Database(path_, calendar_).insert(session("Editor", 10));
  const Database again(path_, calendar_);
  const Database third(path_, calendar_);
  Sql sql(path_);
  EXPECT_EQ(sql.row("SELECT count(*) FROM sqlite_master WHERE name NOT LIKE 'sqlite_%'"), "5");
  EXPECT_EQ(sql.row("SELECT app_name FROM activities"), "Editor");
}

TEST_F(DatabaseTest, NeverUsesARowIDTwice) {
  Database database(path_, calendar_);
  Sql sql(path_);
  EXPECT_EQ(database.insert(session("A", 1)), 1);
  EXPECT_EQ(database.insert(session("B", 2)), 2);
  sql.run("DELETE FROM activities");
  EXPECT_EQ(database.insert(session("C", 3)), 3);

  const Annotation note{.id = {}, .text = "x", .startedAt = {1}, .endedAt = {}};
  EXPECT_EQ(database.insertAnnotation(note), 1);
  sql.run("DELETE FROM annotations");
  EXPECT_EQ(database.insertAnnotation(note), 2);
}

TEST_F(DatabaseTest, FailsToOpenInAFolderThatIsMissing) {
  try {
    const Database database(folder_.file("missing/activities.db"), calendar_);
    FAIL();
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.errorCase(), DatabaseError::Case::openFailed);
    EXPECT_EQ(error.code(), SQLITE_CANTOPEN);
    EXPECT_EQ(error.description(), "Failed to open database: " + sqliteText(SQLITE_CANTOPEN));
  }
}

TEST_F(DatabaseTest, FailsForAFileThatIsNoDatabase) {
  writeFile(path_, std::string(4096, 'x'));
  try {
    const Database database(path_, calendar_);
    FAIL();
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.errorCase(), DatabaseError::Case::executionFailed);
    EXPECT_EQ(error.code(), SQLITE_NOTADB);
    EXPECT_EQ(error.description(), "Failed to execute statement: " + sqliteText(SQLITE_NOTADB));
  }
  EXPECT_EQ(readFile(path_), std::string(4096, 'x'));
}

TEST_F(DatabaseTest, TakesAPathLiterally) {
  const std::string odd = folder_.file("file:odd?mode=memory");
  const Database database(odd, calendar_);
  EXPECT_EQ(readFile(odd).substr(0, 15), "SQLite format 3");
}

TEST_F(DatabaseTest, MeetsALockAtOnceAndWorksAfterIt) {
  Database database(path_, calendar_);
  database.insert(session("Editor", 10));
  Sql other(path_);
  other.run("BEGIN EXCLUSIVE");
  try {
    database.insert(session("Late", 11));
    FAIL();
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.code(), SQLITE_BUSY);
    EXPECT_EQ(error.description(), "Failed to execute statement: " + sqliteText(SQLITE_BUSY));
  }
  EXPECT_TRUE(database.fetchActivities({10}, -1).empty());
  EXPECT_TRUE(database.appUsage({10}).empty());
  other.run("COMMIT");
  EXPECT_EQ(database.fetchActivities({10}, -1).size(), 1u);
  EXPECT_EQ(database.appUsage({10}).size(), 1u);
}

TEST_F(DatabaseTest, FailsToPrepareOnceItKnowsThatATableIsGone) {
  Database database(path_, calendar_);
  Sql(path_).run("DROP TABLE activities");
  // SQLite prepares the statement with the old schema; running it ends early.
  EXPECT_TRUE(database.fetchActivities({10}, 1).empty());
  try {
    static_cast<void>(database.fetchActivities({10}, 1));
    FAIL();
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.description(),
              "Failed to prepare statement: " + Sql(path_).failureOf("SELECT 1 FROM activities"));
  }
  EXPECT_THROW(static_cast<void>(database.appUsage({10})), DatabaseError);
}

TEST_F(DatabaseTest, IsForTheUserAloneWithItsJournalWhateverTheUmask) {
  const auto permissions = [](const std::string& path) {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 ? found.st_mode & 0777U : 0;
  };
  const mode_t before = umask(0);
  const Database database(path_, calendar_);
  Sql sql(path_);
  sql.run("BEGIN; INSERT INTO activities (app_name, start_time) VALUES ('Editor', 0);");
  EXPECT_EQ(permissions(path_), 0600U);
  EXPECT_EQ(permissions(path_ + "-journal"), 0600U);
  umask(before);
}

}  // namespace
}  // namespace tessum
