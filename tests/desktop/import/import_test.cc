// The import of other programs' histories, as a person runs it.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/desktop/user.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

class Import : public testing::Test {
 protected:
  // Imports a file of that text.
  Outcome import(const std::string& text, const std::vector<std::string>& options = {}) {
    writeFile(user.file("export.json"), text);
    std::vector<std::string> arguments{"import", user.file("export.json")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return user.run(arguments);
  }

  // What the import says about the file.
  std::string summary(const std::string& text, const std::vector<std::string>& options = {}) {
    const Outcome outcome = import(text, options);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    const auto end = outcome.output.find(": ");
    return end == std::string::npos ? outcome.output : outcome.output.substr(end + 2);
  }

  std::vector<std::string> sessions() {
    return Sql(user.historyPath())
        .rows(
            "SELECT app_name, title, strftime('%H:%M:%f', start_time, 'unixepoch'), "
            "strftime('%H:%M:%f', end_time, 'unixepoch') FROM activities ORDER BY start_time, id");
  }

  User user;
};

// An event of a bucket.
std::string event(const std::string& time, const std::string& seconds, const std::string& data) {
  return R"({"id":1,"timestamp":"2025-03-04T)" + time + R"(","duration":)" + seconds +
         R"(,"data":)" + data + "}";
}

std::string buckets(const std::string& windows, const std::string& absences) {
  return R"({"buckets":{"aw-watcher-window_desk":{"id":"aw-watcher-window_desk","created":"x",)"
         R"("events":[)" +
         windows + R"(],"type":"currentwindow","hostname":"desk","data":{}},)" +
         R"("aw-watcher-afk_desk":{"type":"afkstatus","hostname":"desk","events":[)" + absences +
         R"(]},"aw-watcher-web":{"type":"web.tab.current","hostname":"desk","events":[)" +
         event("09:00:00Z", "9", R"({"url":"https://a.example/","title":"A","audible":false})") +
         "]}}}";
}

TEST_F(Import, OfBucketsCutsWindowsByTheTimesAway) {
  const std::string text =
      buckets(event("09:30:00.250000+00:00", "600.5", R"({"app":"Editor","title":"main.cc"})") +
                  "," + event("10:00:00+01:00", "1800", R"({"app":"Mail","title":"Inb\u00f6x"})") +
                  "," + event("11:10:00Z", "60", R"({"app":"Mail","title":"away all the time"})") +
                  "," + event("12:00:00Z", "0", R"({"app":"Mail"})"),
              event("09:10:00Z", "300", R"({"status":"afk"})") + "," +
                  event("09:15:00Z", "3000", R"({"status":"not-afk"})") + "," +
                  event("11:00:00Z", "1000", R"({"status":"afk"})"));
  EXPECT_EQ(summary(text), "4 sessions added, 1 while you were away.\n");
  EXPECT_EQ(sessions(), (std::vector<std::string>{"Mail|Inb\u00f6x|09:00:00.000|09:10:00.000",
                                                  "Mail|Inb\u00f6x|09:15:00.000|09:30:00.000",
                                                  "Editor|main.cc|09:30:00.250|09:40:00.750",
                                                  "Mail|NULL|12:00:00.000|12:00:00.000"}));
  EXPECT_EQ(summary(text), "0 sessions added, 4 there already, 1 while you were away.\n");
}

TEST_F(Import, OfBucketsTakesNoAbsencesOfAnotherComputer) {
  const std::string text =
      R"({"buckets":{"w":{"type":"currentwindow","hostname":"desk","events":[)" +
      event("09:00:00Z", "60", R"({"app":"Editor","title":"x"})") +
      R"(]},"a":{"type":"afkstatus","hostname":"laptop","events":[)" +
      event("09:00:00Z", "30", R"({"status":"afk"})") + "]}}}";
  EXPECT_EQ(summary(text), "1 session added.\n");
  EXPECT_EQ(sessions(), std::vector<std::string>{"Editor|x|09:00:00.000|09:01:00.000"});
}

TEST_F(Import, SkipsAndCountsBrokenEvents) {
  const std::string good = event("09:00:00Z", "60", R"({"app":"Editor","title":"x"})");
  std::string windows = good;
  for (const std::string& broken :
       {event("09:01:00", "60", R"({"app":"Editor"})"), event("25:01:00Z", "60", R"({"app":"E"})"),
        event("09:01:00Z", "-1", R"({"app":"Editor"})"),
        event("09:01:00Z", "1e300", R"({"app":"Editor"})"),
        event("09:01:00Z", "60", R"({"title":"Editor"})"), event("09:01:00Z", "60", "7"),
        event("09:01:00Z", "60", R"({"app":7})"), event("09:01:00Z", "60", R"({"app":""})"),
        event("09:01:00Z", "6o", R"({"app":"E"})"), std::string(R"({"app":"\q"})"),
        std::string("null"), std::string("\"\xFF\"")}) {
    windows += "," + broken;
  }
  EXPECT_EQ(summary(buckets(windows, event("09:01:00Z", "-1", R"({"status":"afk"})"))),
            "1 session added, 13 broken and skipped.\n");
}

std::string sample(const std::string& time, const std::string& window, int inactive = 100) {
  return R"({"date":"2025-03-04T)" + time + R"(","rate":60000,"inactive":)" +
         std::to_string(inactive) + R"(,"desktop":"1","windows":[)" +
         R"({"active":false,"program":"Other","title":"behind"})" +
         (window.empty() ? "" : "," + window) + "]}";
}

std::string window(const std::string& program, const std::string& title) {
  return R"({"active":true,"program":")" + program + R"(","title":")" + title + "\"}";
}

TEST_F(Import, OfSamplesJoinsThoseOfOneWindow) {
  const std::string text =
      "[" + sample("09:00:00.5Z", window("Editor", "a")) + "\n," +
      sample("09:01:00.5Z", window("Editor", "a")) + "\n," +
      sample("09:02:00.5Z", window("Editor", "b")) + "\n," +
      sample("09:02:50.5Z", window("Mail", "")) + "\n," + sample("09:10:00Z", window("Mail", "")) +
      "\n," + sample("09:11:00Z", "") + "\n," + sample("09:12:00Z", window("Mail", "c")) + "\n," +
      sample("09:13:00Z", window("Mail", "c")) + "\n," +
      sample("09:18:10Z", window("Mail", "c"), 310'000) + "\n,7]";
  EXPECT_EQ(summary(text), "5 sessions added, 1 broken and skipped, 1 while you were away.\n");
  EXPECT_EQ(sessions(),
            (std::vector<std::string>{
                "Editor|a|09:00:00.500|09:02:00.500", "Editor|b|09:02:00.500|09:02:50.500",
                "Mail||09:02:50.500|09:03:50.500", "Mail||09:10:00.000|09:11:00.000",
                "Mail|c|09:12:00.000|09:13:00.000"}));
  EXPECT_TRUE(summary(text).starts_with("0 sessions added, 5 there already"));
}

TEST_F(Import, OfItsOwnExportGivesTheSameHistory) {
  user.addSession("Editor", "\"quoted\" \u00e4", "2025-03-04T09:00:00Z", "2025-03-04T09:30:00Z");
  user.addSession("Mail", nullptr, "2025-03-04T09:30:00Z", nullptr);
  for (const char* text : {"first", "second"}) {
    ASSERT_EQ(user.run({"note", text, "--at",
                        "2025-03-04 " + std::string(*text == 'f' ? "9:00-10:00" : "10:00-11:00")})
                  .status,
              0);
  }
  ASSERT_EQ(user.run({"note", "current"}).status, 0);
  const std::string exported = user.run({"export", "--format", "json"}).output;
  EXPECT_EQ(summary(exported), "0 sessions added, 5 there already.\n");

  std::filesystem::remove(user.historyPath());
  EXPECT_EQ(summary(exported, {"--dry-run"}), "2 sessions and 3 notes would be added.\n");
  EXPECT_FALSE(std::filesystem::exists(user.historyPath()));
  EXPECT_EQ(summary(exported), "2 sessions and 3 notes added.\n");
  EXPECT_EQ(user.run({"export", "--format", "json"}).output, exported);
}

TEST_F(Import, TriesWithoutChange) {
  user.addSession("Editor", "x", "2025-03-04T09:00:00Z", "2025-03-04T09:30:00Z");
  const std::string text =
      buckets(event("09:00:00.9Z", "60", R"({"app":"Editor","title":"x"})") + "," +
                  event("09:00:01Z", "60", R"({"app":"E","title":"x"})") + "," +
                  event("09:00:01Z", "60", R"({"app":"E","title":"x"})"),
              "");
  EXPECT_EQ(summary(text, {"--dry-run"}), "1 session would be added, 2 there already.\n");
  EXPECT_EQ(sessions().size(), 1U);
  EXPECT_EQ(summary(text), "1 session added, 2 there already.\n");
}

TEST_F(Import, LeavesOutWhatTheSettingsHide) {
  user.writeSettings("[[hide]]\napp = 'Bank'\n[[hide]]\napp = 'Mail'\nkeep = 'app'\n");
  EXPECT_EQ(summary(buckets(event("09:00:00Z", "60", R"({"app":"Bank","title":"secret"})") + "," +
                                event("09:01:00Z", "60", R"({"app":"Mail","title":"secret"})"),
                            "")),
            "1 session added, 1 hidden by your settings.\n");
  EXPECT_EQ(sessions(), std::vector<std::string>{"Mail|NULL|09:01:00.000|09:02:00.000"});
}

TEST_F(Import, RefusesWhatIsNoExportAndThenChangesNothing) {
  writeFile(user.file("good.json"),
            buckets(event("09:00:00Z", "60", R"({"app":"Editor","title":"x"})"), ""));
  for (const char* text :
       {"", "hello", "{}", "[1,2]", "{\"buckets\":[]}", "{\"activities\":[]}", "[{\"date\":\"x\"}]",
        "{\"buckets\":{\"w\":{\"type\":\"currentwindow\",\"events\":[", "kind,start,end\n",
        "\x7f"
        "ELF"}) {
    writeFile(user.file("bad.json"), text);
    const Outcome outcome = user.run({"import", user.file("good.json"), user.file("bad.json")});
    EXPECT_EQ(outcome.status, 1) << text;
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(contains(outcome.errors, "bad.json cannot be imported: ")) << outcome.errors;
    EXPECT_FALSE(std::filesystem::exists(user.historyPath()));
  }
  writeFile(user.file("packed.json"), "\x1f\x8b\x08, \x03");
  EXPECT_TRUE(
      contains(user.run({"import", user.file("packed.json")}).errors, "it is no export of"));
  EXPECT_EQ(user.run({"import", user.file("none.json")}).status, 1);
  EXPECT_EQ(user.run({"import"}).status, 2);
}

}  // namespace
}  // namespace tessum
