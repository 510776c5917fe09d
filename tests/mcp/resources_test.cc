#include "tests/mcp/engine_fixture.h"

namespace tessum {
namespace {

struct ResourcesTest : EngineTest {
  json::Value read(const std::string& uri) {
    return call(R"("resources/read")", R"({"uri":")" + uri + "\"}");
  }

  // The text of a resource. Its one content must repeat the URI.
  std::string textOf(const std::string& uri) {
    const json::Value response = read(uri);
    const json::Value::Array& contents = *member(*member(response, "result"), "contents")->array();
    EXPECT_EQ(contents.size(), 1u);
    EXPECT_EQ(contents[0].object()->size(), 3u);
    EXPECT_EQ(*member(contents[0], "uri")->text(), uri);
    EXPECT_EQ(*member(contents[0], "mimeType")->text(), "text/plain");
    return *member(contents[0], "text")->text();
  }

  void add(const char* app, double secondsFromNoon) {
    database_->insert({.id = {},
                       .appName = app,
                       .bundleID = {},
                       .title = {},
                       .startTime = movedBy(kNoon, secondsFromNoon),
                       .endTime = movedBy(kNoon, secondsFromNoon + 1)});
  }
};

TEST_F(ResourcesTest, ListsThreeInOrderWhateverTheParams) {
  const json::Value expected = json::parse(R"({"resources":[
    {"uri":"tessum://activities/today","name":"Today's Activities",
     "description":"All logged app sessions for today.","mimeType":"text/plain"},
    {"uri":"tessum://activities/yesterday","name":"Yesterday's Activities",
     "description":"All logged app sessions for yesterday.","mimeType":"text/plain"},
    {"uri":"tessum://usage/today","name":"Today's App Usage Summary",
     "description":"Time spent per application today.","mimeType":"text/plain"}]})");
  for (const char* params : {"null", "{}", "[]", R"({"cursor":"x"})"}) {
    EXPECT_EQ(*member(call(R"("resources/list")", params), "result"), expected) << params;
  }
}

struct ParamsWithoutUri : EngineTest, testing::WithParamInterface<const char*> {};

TEST_P(ParamsWithoutUri, AreAnErrorOfTheRequest) {
  EXPECT_EQ(call(R"("resources/read")", GetParam()),
            json::parse(R"({"jsonrpc":"2.0","id":1,"error":{"code":-32602,)"
                        R"("message":"Invalid params: missing 'uri'"}})"));
}

INSTANTIATE_TEST_SUITE_P(Params, ParamsWithoutUri,
                         testing::Values("null", "{}", "[]", "\"x\"", R"({"uri":42})",
                                         R"({"uri":null})", R"({"URI":"tessum://usage/today"})"));

TEST_F(ResourcesTest, ComparesURIsExactly) {
  for (const char* uri :
       {"tessum://activities/Today", "tessum://activities/today/", "", "tessum://usage/yesterday",
        " tessum://usage/today", "TESSUM://usage/today"}) {
    const json::Value response = read(uri);
    const json::Value* error = member(response, "error");
    ASSERT_NE(error, nullptr) << uri;
    EXPECT_EQ(*member(*error, "code"), json::Value(-32603));
    EXPECT_EQ(*member(*error, "message")->text(), std::string("Unknown resource URI: ") + uri);
  }
}

TEST_F(ResourcesTest, RepeatsAnUnknownURIWhole) {
  const json::Value response = read(R"(tessum://a\u0000b\/c\u00e9)");
  const json::Value* error = member(response, "error");
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(*member(*error, "code"), json::Value(-32603));
  EXPECT_EQ(*member(*error, "message")->text(),
            std::string("Unknown resource URI: tessum://a\0b/cé", 38));
}

TEST_F(ResourcesTest, TodayIsTheActivityReportAlone) {
  EXPECT_EQ(textOf("tessum://activities/today"), "No activities found.");
  add("Editor", 0);
  EXPECT_EQ(textOf("tessum://activities/today"),
            "Activities (1 sessions):\n"
            "• Editor  [2025-03-04T12:00:00 → 2025-03-04T12:00:01]  (1s)");
}

TEST_F(ResourcesTest, TodayAddsTheAnnotations) {
  database_->insertAnnotation({.id = {}, .text = "Work", .startedAt = kNoon, .endedAt = {}});
  EXPECT_EQ(textOf("tessum://activities/today"),
            "No activities found.\n\n"
            "Annotations (1):\n• Work  [2025-03-04T12:00:00 → ongoing]  (0s)");
}

TEST_F(ResourcesTest, YesterdayIsTheWholeLocalDayBefore) {
  add("day before yesterday", -36 * 3600 - 1);
  add("yesterday's first", -36 * 3600);
  add("yesterday's last", -12 * 3600 - 1);
  add("today", -12 * 3600);
  EXPECT_EQ(textOf("tessum://activities/yesterday"),
            "Activities (2 sessions):\n"
            "• yesterday's last  [2025-03-03T23:59:59 → 2025-03-04T00:00:00]  (1s)\n"
            "• yesterday's first  [2025-03-03T00:00:00 → 2025-03-03T00:00:01]  (1s)");
}

TEST_F(ResourcesTest, YesterdayFollowsTheZonesClock) {
  const ScopedVariable zone("TZ", "Pacific/Apia");
  clock_.set({1325239200});  // 2011-12-31 00:00 there, where there was no 30 December
  const double shift = 1325239200 - kNoon.secondsSince1970;
  add("29 December", shift - 3600);
  EXPECT_NE(textOf("tessum://activities/yesterday").find("29 December"), std::string::npos);
}

TEST_F(ResourcesTest, ActivitiesAreAtMostTwoHundredAndAnnotationsAHundred) {
  for (int i = 0; i < 210; ++i) add("A", i);
  for (int i = 0; i < 110; ++i) {
    database_->insertAnnotation(
        {.id = {}, .text = "n", .startedAt = movedBy(kNoon, i), .endedAt = {}});
  }
  const std::string text = textOf("tessum://activities/today");
  EXPECT_TRUE(text.starts_with("Activities (200 sessions):"));
  EXPECT_NE(text.find("\n\nAnnotations (100):\n"), std::string::npos);
}

TEST_F(ResourcesTest, UsageIsTheSummaryOfToday) {
  EXPECT_EQ(textOf("tessum://usage/today"), "No usage data found.");
  add("Editor", 0);
  add("Editor", -86400);
  EXPECT_EQ(textOf("tessum://usage/today"),
            "App usage summary (1 apps):\n• Editor: 1s across 1 session(s)");
}

TEST_F(ResourcesTest, AStoreErrorIsAnErrorOfTheRequest) {
  sql_.run("DROP TABLE activities");
  static_cast<void>(read("tessum://activities/today"));  // SQLite now knows that it is gone
  EXPECT_EQ(read("tessum://activities/today"),
            json::parse(R"({"jsonrpc":"2.0","id":1,"error":{"code":-32603,)"
                        R"("message":"Failed to prepare statement: )" +
                        sql_.failureOf("SELECT * FROM activities") + "\"}}"));
}

}  // namespace
}  // namespace tessum
