#include <sqlite3.h>

#include "tests/mcp/engine_fixture.h"

namespace tessum {
namespace {

struct ToolCallsTest : EngineTest {
  // Sessions of one minute each, `count` of them from noon on.
  void addSessions(int count) {
    for (int i = 0; i < count; ++i) {
      database_->insert({.id = {},
                         .appName = "App" + std::to_string(i),
                         .bundleID = {},
                         .title = {},
                         .startTime = movedBy(kNoon, i),
                         .endTime = movedBy(kNoon, i + 60)});
    }
  }

  // The number that the header of an activity report gives.
  int sessionsIn(const ToolText& result) {
    int count = 0;
    return std::sscanf(result.text.c_str(), "Activities (%d sessions):", &count) == 1 ? count : 0;
  }
};

struct ParamsWithoutName : EngineTest, testing::WithParamInterface<const char*> {};

TEST_P(ParamsWithoutName, AreAnErrorOfTheRequest) {
  EXPECT_EQ(call(R"("tools/call")", GetParam()),
            json::parse(R"({"jsonrpc":"2.0","id":1,"error":{"code":-32602,)"
                        R"("message":"Invalid params: missing 'name'"}})"));
}

INSTANTIATE_TEST_SUITE_P(Params, ParamsWithoutName,
                         testing::Values("null", "{}", "[]", "\"get_activities\"", "5",
                                         R"({"name":5})", R"({"name":null})", R"({"name":["x"]})",
                                         R"({"Name":"annotate"})"));

TEST_F(ToolCallsTest, AnUnknownToolIsAnErrorResult) {
  EXPECT_EQ(tool("nope"), (ToolText{"Unknown tool: nope", true}));
  EXPECT_EQ(tool("Annotate"), (ToolText{"Unknown tool: Annotate", true}));
  EXPECT_EQ(tool(""), (ToolText{"Unknown tool: ", true}));
  EXPECT_EQ(tool(R"(a\u0000b)"), (ToolText{std::string("Unknown tool: a\0b", 17), true}));
}

TEST_F(ToolCallsTest, ArgumentsThatAreNoObjectCountAsNone) {
  addSessions(1);
  for (const char* params :
       {R"({"name":"get_activities"})", R"({"name":"get_activities","arguments":null})",
        R"({"name":"get_activities","arguments":[1]})",
        R"({"name":"get_activities","arguments":"x"})"}) {
    const auto response = call(R"("tools/call")", params);
    EXPECT_NE(member(response, "result"), nullptr) << params;
  }
  EXPECT_EQ(sessionsIn(tool("get_activities", "[]")), 1);
}

TEST_F(ToolCallsTest, GetActivitiesReportsTheDayAndItsAnnotations) {
  EXPECT_EQ(tool("get_activities"), (ToolText{"No activities found.", false}));
  database_->insert({.id = {},
                     .appName = "Editor",
                     .bundleID = {},
                     .title = "a/b",
                     .startTime = kNoon,
                     .endTime = movedBy(kNoon, 60)});
  const std::string sessions =
      "Activities (1 sessions):\n"
      "• Editor – a/b  [2025-03-04T12:00:00 → 2025-03-04T12:01:00]  (1m 0s)";
  EXPECT_EQ(tool("get_activities"), (ToolText{sessions, false}));
  database_->insertAnnotation({.id = {}, .text = "Work", .startedAt = kNoon, .endedAt = {}});
  clock_.advance(30);
  const std::string notes = "Annotations (1):\n• Work  [2025-03-04T12:00:00 → ongoing]  (30s)";
  EXPECT_EQ(tool("get_activities"), (ToolText{sessions + "\n\n" + notes, false}));
  EXPECT_EQ(tool("get_activities", R"({"date":"2025-03-05"})"),
            (ToolText{"No activities found.\n\n" + notes, false}));
  EXPECT_EQ(tool("get_activities", R"({"date":"2025-03-03"})"),
            (ToolText{"No activities found.", false}));
}

TEST_F(ToolCallsTest, GetActivitiesTakesOnlyIntegersForItsLimit) {
  addSessions(150);
  const auto sessions = [&](const char* limit) {
    return sessionsIn(tool("get_activities", std::string(R"({"limit":)") + limit + "}"));
  };
  EXPECT_EQ(sessionsIn(tool("get_activities")), 100);
  for (const char* other : {"\"10\"", "2.5", "true", "null", "[10]", "9223372036854775808"}) {
    EXPECT_EQ(sessions(other), 100) << other;
  }
  EXPECT_EQ(sessions("10"), 10);
  EXPECT_EQ(sessions("1e1"), 10);
  EXPECT_EQ(sessions("-1"), 150);
  EXPECT_EQ(tool("get_activities", R"({"limit":0})"), (ToolText{"No activities found.", false}));
}

TEST_F(ToolCallsTest, AnUnreadableDateMeansToday) {
  addSessions(1);
  for (const char* date : {"\"yesterday\"", "\"2025/03/04\"", "\"2025-02-30\"", "5", "null"}) {
    EXPECT_EQ(sessionsIn(tool("get_activities", std::string(R"({"date":)") + date + "}")), 1)
        << date;
  }
}

TEST_F(ToolCallsTest, AnnotationsOfADayAreAtMostAHundredWhateverTheLimit) {
  for (int i = 0; i < 120; ++i) {
    database_->insertAnnotation(
        {.id = {}, .text = "n", .startedAt = movedBy(kNoon, i), .endedAt = {}});
  }
  EXPECT_NE(tool("get_activities", R"({"limit":1})").text.find("Annotations (100):"),
            std::string::npos);
  EXPECT_TRUE(tool("get_annotations", R"({"limit":1})").text.starts_with("Annotations (100):"));
}

TEST_F(ToolCallsTest, SearchActivitiesNeedsAQuery) {
  for (const char* arguments : {"{}", R"({"query":5})", R"({"query":null})"}) {
    EXPECT_EQ(tool("search_activities", arguments), (ToolText{"Error: 'query' is required", true}));
  }
}

TEST_F(ToolCallsTest, SearchActivitiesGivesFiftyAndNoAnnotations) {
  addSessions(60);
  database_->insertAnnotation({.id = {}, .text = "App", .startedAt = kNoon, .endedAt = {}});
  EXPECT_EQ(sessionsIn(tool("search_activities", R"({"query":"app"})")), 50);
  EXPECT_EQ(sessionsIn(tool("search_activities", R"({"query":"","limit":7})")), 7);
  EXPECT_EQ(sessionsIn(tool("search_activities", R"({"query":"APP59"})")), 1);
  EXPECT_EQ(tool("search_activities", R"({"query":"none"})"),
            (ToolText{"No activities found.", false}));
  EXPECT_EQ(tool("search_activities", R"({"query":"app"})").text.find("Annotations"),
            std::string::npos);
}

TEST_F(ToolCallsTest, GetAppUsageSumsUpTheDay) {
  EXPECT_EQ(tool("get_app_usage"), (ToolText{"No usage data found.", false}));
  addSessions(1);
  EXPECT_EQ(tool("get_app_usage"),
            (ToolText{"App usage summary (1 apps):\n• App0: 1m across 1 session(s)", false}));
  EXPECT_EQ(tool("get_app_usage", R"({"date":"2025-03-03"})"),
            (ToolText{"No usage data found.", false}));
}

TEST_F(ToolCallsTest, AnnotateStoresTheTrimmedText) {
  EXPECT_EQ(tool("annotate", R"({"text":"  Fixing bug \n"})"),
            (ToolText{"Annotation started: Fixing bug (since 2025-03-04T12:00:00Z)", false}));
  EXPECT_EQ(database_->currentAnnotation(),
            (Annotation{.id = 1, .text = "Fixing bug", .startedAt = kNoon, .endedAt = {}}));
}

TEST_F(ToolCallsTest, AnnotateBackdatesByTheDuration) {
  static_cast<void>(tool("annotate", R"({"text":"before"})"));
  clock_.advance(7200);
  EXPECT_EQ(tool("annotate", R"({"text":"x","duration":"1h30m"})"),
            (ToolText{"Annotation started: x (since 2025-03-04T12:30:00Z)", false}));
  EXPECT_EQ(sql_.rows("SELECT text, started_at, ended_at FROM annotations ORDER BY id"),
            (std::vector<std::string>{"before|1741089600.0|1741091400.0", "x|1741091400.0|NULL"}));
}

TEST_F(ToolCallsTest, AnnotateIgnoresADurationItCannotRead) {
  for (const char* duration : {"\"soon\"", "\"0m\"", "30", "null", "\"9223372036854775807s\"",
                               "\"20000000h\"", "\"63876686401s\""}) {
    EXPECT_EQ(tool("annotate", std::string(R"({"text":"x","duration":)") + duration + "}"),
              (ToolText{"Annotation started: x (since 2025-03-04T12:00:00Z)", false}))
        << duration;
  }
  // 63,876,686,400 seconds reach back to the first second of the year 1.
  EXPECT_EQ(tool("annotate", R"({"text":"x","duration":"63876686400s"})"),
            (ToolText{"Annotation started: x (since 0001-01-01T00:00:00Z)", false}));
}

TEST_F(ToolCallsTest, AnnotateWithoutTextEndsTheCurrentOne) {
  for (const char* arguments : {R"({"text":""})", R"({"text":"   "})", "{}", R"({"text":5})",
                                R"({"text":"\u3000\u2028","duration":"1h"})"}) {
    static_cast<void>(tool("annotate", R"({"text":"open"})"));
    EXPECT_EQ(tool("annotate", arguments), (ToolText{"Ended current annotation.", false}));
    EXPECT_FALSE(database_->currentAnnotation().has_value()) << arguments;
    EXPECT_EQ(sql_.row("SELECT max(ended_at) FROM annotations"), "1741089600.0");
  }
  EXPECT_EQ(tool("annotate", "{}"), (ToolText{"Ended current annotation.", false}));
}

TEST_F(ToolCallsTest, GetAnnotationsReportsTheDay) {
  EXPECT_EQ(tool("get_annotations"), (ToolText{"No annotations found.", false}));
  static_cast<void>(tool("annotate", R"({"text":"Résumé \"1\""})"));
  EXPECT_EQ(
      tool("get_annotations"),
      (ToolText{"Annotations (1):\n• Résumé \"1\"  [2025-03-04T12:00:00 → ongoing]  (0s)", false}));
  EXPECT_EQ(tool("get_annotations", R"({"date":"2025-03-03"})"),
            (ToolText{"No annotations found.", false}));
}

TEST_F(ToolCallsTest, AStoreErrorIsAResultWithItsDescription) {
  sql_.run("BEGIN EXCLUSIVE");
  EXPECT_EQ(tool("annotate", R"({"text":"x"})"),
            (ToolText{"Error: Failed to execute statement: " + sqliteText(SQLITE_BUSY), true}));
  sql_.run("ROLLBACK");
  EXPECT_FALSE(tool("annotate", R"({"text":"x"})").isError);
  sql_.run("DROP TABLE annotations");
  static_cast<void>(tool("get_annotations"));  // SQLite now knows that it is gone
  EXPECT_EQ(tool("get_activities"), (ToolText{"Error: Failed to prepare statement: " +
                                                  sql_.failureOf("SELECT * FROM annotations"),
                                              true}));
}

using ToolCallsDeathTest = ToolCallsTest;

TEST_F(ToolCallsDeathTest, ALimitBeyondThirtyTwoBitsStopsTheProcess) {
  EXPECT_DEATH(static_cast<void>(tool("get_activities", R"({"limit":2147483648})")),
               "a row limit outside the 32-bit range");
  EXPECT_DEATH(static_cast<void>(tool("search_activities", R"({"query":"x","limit":-2147483649})")),
               "a row limit outside the 32-bit range");
}

}  // namespace
}  // namespace tessum
