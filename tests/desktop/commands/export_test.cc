#include <gtest/gtest.h>
#include <sys/stat.h>

#include "core/json/reader.h"
#include "core/store/records.h"
#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

class Export : public testing::Test {
 protected:
  Export() {
    Database database = user.database();
    database.insert({.id = {},
                     .appName = "Editor, \"the best\"",
                     .bundleID = "org.example.editor",
                     .title = "two\nlines",
                     .startTime = at("2025-03-04T09:00:00Z"),
                     .endTime = Date{at("2025-03-04T09:00:30Z").secondsSince1970 + 0.25}});
    database.insert({.id = {},
                     .appName = "Browser",
                     .bundleID = {},
                     .title = {},
                     .startTime = at("2025-03-05T23:00:00Z"),
                     .endTime = {}});
    database.insertAnnotation(
        {.id = {}, .text = "Work", .startedAt = at("2025-03-05T08:00:00Z"), .endedAt = {}});
  }

  User user;
};

TEST_F(Export, CsvHasALineForEachSessionAndNote) {
  const Outcome outcome = user.run({"export"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output,
            "kind,start,end,seconds,application,bundle_id,text\r\n"
            "session,2025-03-04T09:00:00Z,2025-03-04T09:00:30Z,30.25,\"Editor, \"\"the "
            "best\"\"\",org.example.editor,\"two\nlines\"\r\n"
            "session,2025-03-05T23:00:00Z,,,Browser,,\r\n"
            "note,2025-03-05T08:00:00Z,,,,,Work\r\n");
}

TEST_F(Export, JsonIsOneObjectOfTheRecords) {
  const Outcome outcome = user.run({"export", "--format", "json"});
  EXPECT_EQ(outcome.status, 0);
  const json::Value document = json::parse(outcome.output);
  const auto& activities = *document.object()->at("activities").array();
  ASSERT_EQ(activities.size(), 2U);
  EXPECT_EQ(activityFromJson(activities[0]).title, "two\nlines");
  EXPECT_EQ(activityFromJson(activities[1]).endTime, std::nullopt);
  const auto& annotations = *document.object()->at("annotations").array();
  ASSERT_EQ(annotations.size(), 1U);
  EXPECT_EQ(annotationFromJson(annotations[0]).text, "Work");
}

TEST_F(Export, AnEmptyHistoryIsStillAnObject) {
  const User other;
  { const Database made = other.database(); }
  const json::Value document = json::parse(other.run({"export", "--format", "json"}).output);
  EXPECT_TRUE(document.object()->at("activities").array()->empty());
  EXPECT_TRUE(document.object()->at("annotations").array()->empty());
}

TEST_F(Export, DaysAreWholeLocalDaysAndBothEndsBelongToIt) {
  const auto count = [&](const std::vector<std::string>& arguments) {
    std::vector<std::string> all{"export"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::size_t lines = 0;
    for (const auto& line : linesOf(user.run(all).output)) {
      if (line.starts_with("session,") || line.starts_with("note,")) ++lines;
    }
    return lines;
  };
  EXPECT_EQ(count({}), 3U);
  EXPECT_EQ(count({"--from", "2025-03-05"}), 2U);
  EXPECT_EQ(count({"--to", "2025-03-04"}), 1U);
  EXPECT_EQ(count({"--from", "2025-03-05", "--to", "2025-03-05"}), 2U);
  EXPECT_EQ(count({"--from", "2025-03-06"}), 0U);
  EXPECT_EQ(count({"2025-03-05"}), 2U);
  EXPECT_EQ(count({"2025-W10"}), 3U);
  EXPECT_EQ(count({"--from", "2025-02", "--to", "2025-W10"}), 3U);
  user.set("TZ", "Asia/Tokyo");  // 23:00 is 08:00 of the next day
  EXPECT_EQ(count({"--from", "2025-03-06"}), 1U);
}

TEST_F(Export, ALastDayBeforeTheFirstIsAMistake) {
  const Outcome outcome = user.run({"export", "--from", "2025-03-05", "--to", "2025-03-04"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
}

// More rows than one step reads, many of them with the same start.
TEST_F(Export, EveryRowOfALongHistoryComesOnce) {
  Sql(user.historyPath())
      .run(
          "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 4499) "
          "INSERT INTO activities (app_name, start_time) "
          "SELECT 'A' || i, strftime('%s', '2025-04-01') + i / 1500 FROM n;");
  const auto lines = linesOf(user.run({"export", "--from", "2025-04-01"}).output);
  ASSERT_EQ(lines.size(), 4501U);
  for (int i = 0; i < 4500; ++i) {
    const std::string name = ",A" + std::to_string(i) + ",";
    EXPECT_NE(lines[static_cast<std::size_t>(i) + 1].find(name), std::string::npos) << i;
  }
}

TEST_F(Export, NoTextIsAFormulaUnlessItIsAskedFor) {
  Sql(user.historyPath()).run("DELETE FROM activities; DELETE FROM annotations;");
  for (const char* title : {"=1+1", "+1", "-1", "@sum", "\tx", "\rx", "1=1", "'=1", "=\"a\",b"}) {
    user.addSession("-App", title, "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
  }
  const std::string before = "session,2025-03-04T09:00:00Z,2025-03-04T10:00:00Z,3600,";
  const auto texts = [&](const std::string& app, const std::vector<std::string>& titles) {
    std::string csv = "kind,start,end,seconds,application,bundle_id,text\r\n";
    for (const std::string& title : titles) csv += before + app + ",," + title + "\r\n";
    return csv;
  };
  EXPECT_EQ(user.run({"export"}).output,
            texts("'-App", {"'=1+1", "'+1", "'-1", "'@sum", "'\tx", "\"'\rx\"", "1=1", "'=1",
                            "\"'=\"\"a\"\",b\""}));
  EXPECT_EQ(user.run({"export", "--raw"}).output,
            texts("-App", {"=1+1", "+1", "-1", "@sum", "\tx", "\"\rx\"", "1=1", "'=1",
                           "\"=\"\"a\"\",b\""}));
}

TEST_F(Export, ATitleCannotCommandTheTerminal) {
  user.addSession("Terminal",
                  "\x1b]0;owned\x07 \x7f \xc2\x9b"
                  "31m",
                  "2025-03-04T12:00:00Z", nullptr);
  for (const char* format : {"csv", "json"}) {
    const std::vector<std::string> command{"export", "--format", format};
    const std::string onTerminal = user.runOnTerminal(command, 80).output;
    for (const char* control : {"\x1b", "\x07", "\x7f", "\xc2\x9b"}) {
      EXPECT_FALSE(contains(onTerminal, control)) << format;
    }
    EXPECT_TRUE(contains(onTerminal, "31m"));
    EXPECT_TRUE(contains(user.run(command).output, "\xc2\x9b")) << "a pipe gets every byte";
  }
}

TEST_F(Export, AFileIsForTheUserAlone) {
  const std::string path = user.file("history.csv");
  ChildProcess shell("sh",
                     {.arguments = {"-c", "umask 0; \"$0\" export > '" + path + "'", hostProgram()},
                      .environment = user.environment()});
  EXPECT_EQ(shell.finish(), kSuccess);
  struct stat status {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
  EXPECT_TRUE(readFile(path).starts_with("kind,"));
}

}  // namespace
}  // namespace tessum
