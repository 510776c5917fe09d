// Reports as data: their form by the schema in docs/, and what is in them.

#include <gtest/gtest.h>

#include "core/json/reader.h"
#include "tests/desktop/data/json_schema.h"
#include "tests/desktop/user.h"

namespace tessum {
namespace {

json::Value schema() {
  return json::parse(readFile(TESSUM_SOURCE_FOLDER "/docs/data.schema.json"));
}

class Data : public testing::Test {
 protected:
  Data() {
    user.set("TZ", "Europe/Berlin");
    user.writeSettings("[[category]]\nname = 'Code'\napp = 'Editor'\n");
    user.addSession("Editor", "a \"title\" /\n\x01", "2025-03-04T09:00:00Z",
                    "2025-03-04T09:30:00Z");
    user.addSession("Browser", nullptr, "2025-03-04T22:30:00Z", "2025-03-04T23:30:00Z");
    Database database = user.database();
    database.insertAnnotation({.id = {},
                               .text = "=1+1, \"quoted\"",
                               .startedAt = at("2025-03-04T09:15:00Z"),
                               .endedAt = {}});
    database.endCurrentAnnotation(at("2025-03-04T10:00:00Z"));
  }

  User user;
};

TEST_F(Data, IsAsTheSchemaSays) {
  user.addSession("Open", nullptr, "2025-03-31T23:00:00Z", nullptr);
  std::vector<std::vector<std::string>> commands = {
      {"day", "2025-03-04"},   {"day", "2025-03"},
      {"day", "2020"},         {"notes", "2025-03"},
      {"notes", "2020"},       {"search", "e"},
      {"search", "nothing"},   {"search", "e", "--in", "2025-03"},
      {"usage", "2025-03-04"}, {"usage", "2025-03"},
      {"usage", "2020"},       {"usage", "2025-03", "--top", "1"},
      {"usage", "0001"},
  };
  for (const char* by : {"app", "title", "category", "note", "day", "weekday", "hour",
                         "day,category", "category,note", "hour,title"}) {
    commands.push_back({"usage", "2025-03", "--by", by});
  }
  for (std::vector<std::string> arguments : commands) {
    arguments.emplace_back("--json");
    const Outcome outcome = user.run(arguments);
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(violations(schema(), json::parse(outcome.output)), "")
        << testing::PrintToString(arguments) << outcome.output;
  }
}

TEST_F(Data, OfTessumItselfIsAsTheSchemaSays) {
  const auto expectData = [&](const char* command, int status) {
    const Outcome outcome = user.run({command, "--json"});
    EXPECT_EQ(outcome.status, status) << outcome.errors;
    const json::Value value = json::parse(outcome.output);
    EXPECT_EQ(violations(schema(), value), "") << outcome.output;
    EXPECT_EQ(*value.object()->at("report").text(), command);
    return value;
  };
  EXPECT_EQ(*expectData("status", 0).object()->at("recording").boolean(), false);
  EXPECT_NE(*expectData("doctor", 1).object()->at("problems").number(), json::Number{"0"});
  const auto rows = *expectData("settings", 0).object()->at("rows").array();
  EXPECT_EQ(*rows.front().object()->at("seconds").number(), json::Number{"300"});
  EXPECT_EQ(*rows.back().object()->at("line").number(), json::Number{"1"});
  EXPECT_FALSE(expectData("clients", 0).object()->at("rows").array()->empty());
  ASSERT_EQ(user.run({"note", "current"}).status, 0);
  ASSERT_EQ(user.run({"pause"}).status, 0);
  ASSERT_EQ(user.run({"install", "cursor"}).status, 0);
  const json::Value status = expectData("status", 0);
  EXPECT_EQ(*status.object()->at("note").object()->at("text").text(), "current");
  EXPECT_TRUE(status.object()->at("paused").object()->at("until").isNull());
  expectData("clients", 0);
  EXPECT_EQ(User().run({"status", "--json"}).status, 0);
  EXPECT_EQ(user.run({"doctor", "--json", "--mend"}).status, 2);
}

TEST_F(Data, OfAnotherFormIsFound) {
  const json::Value good = json::parse(user.run({"usage", "2025-03-04", "--json"}).output);
  ASSERT_EQ(violations(schema(), good), "");
  const auto changed = [&](const char* name, const json::Value& value) {
    json::Value::Object object = *good.object();
    object[name] = value;
    return violations(schema(), object);
  };
  EXPECT_NE(changed("report", "uses"), "");
  EXPECT_NE(changed("seconds", -1), "");
  EXPECT_NE(changed("seconds", "1"), "");
  EXPECT_NE(changed("sessions", json::Number{"1.5"}), "");
  EXPECT_NE(changed("more", 1), "");
  EXPECT_NE(changed("rows", json::Value::Array{json::Value::Object{{"app", "x"}}}), "");
  EXPECT_NE(changed("period", json::Value::Object{{"first", "4 March"}}), "");
}

TEST_F(Data, OfADayIsCutAtItsEndAndHasItsNotes) {
  EXPECT_EQ(user.run({"day", "2025-03-04", "--csv"}).output,
            "kind,start,end,seconds,application,bundle_id,text\r\n"
            "session,2025-03-04T10:00:00+01:00,2025-03-04T10:30:00+01:00,1800,Editor,,"
            "\"a \"\"title\"\" /\n\x01\"\r\n"
            "session,2025-03-04T23:30:00+01:00,2025-03-05T00:00:00+01:00,1800,Browser,,\r\n"
            "note,2025-03-04T10:15:00+01:00,2025-03-04T11:00:00+01:00,2700,,,"
            "\"'=1+1, \"\"quoted\"\"\"\r\n");
  const json::Value day = json::parse(user.run({"day", "2025-03-04", "--json"}).output);
  EXPECT_EQ(*day.object()->at("seconds").number(), json::Number{"3600"});
  EXPECT_EQ(*day.object()->at("sessions").number(), json::Number{"2"});
  const auto& rows = *day.object()->at("rows").array();
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(*rows[0].object()->at("text").text(), "a \"title\" /\n\x01");
  EXPECT_TRUE(rows[1].object()->at("text").isNull());
  EXPECT_EQ(*rows[2].object()->at("kind").text(), "note");
  const json::Value notes = json::parse(user.run({"notes", "2025-03-04", "--json"}).output);
  EXPECT_EQ(notes.object()->at("period"), day.object()->at("period"));
  EXPECT_EQ(*notes.object()->at("rows").array(), json::Value::Array{rows[2]});
}

TEST_F(Data, OfUsageNamesEachGroupUnderItsGrouping) {
  EXPECT_EQ(user.run({"usage", "2025-03-04", "--by", "category,note", "--csv"}).output,
            "category,note,seconds,sessions\r\n"
            ",,1800,1\r\n"
            "Code,,900,1\r\n"
            "Code,\"'=1+1, \"\"quoted\"\"\",900,1\r\n");
  EXPECT_EQ(user.run({"usage", "2025-03-04", "--by", "category", "--json"}).output,
            "{\"by\":[\"category\"],\"period\":{\"end\":\"2025-03-05T00:00:00+01:00\",\"first\":"
            "\"2025-03-04\",\"last\":\"2025-03-04\",\"start\":\"2025-03-04T00:00:00+01:00\"},"
            "\"report\":\"usage\",\"rows\":[{\"category\":null,\"seconds\":1800,\"sessions\":1},"
            "{\"category\":\"Code\",\"seconds\":1800,\"sessions\":1}],\"seconds\":3600,"
            "\"sessions\":2}\n");
  const json::Value days = json::parse(user.run({"usage", "2025-W10", "--json"}).output);
  EXPECT_EQ(days.object()->at("days").array()->size(), 6U);  // from the first record on
  EXPECT_EQ(*days.object()->at("secondsBefore").number(), json::Number{"0"});
}

TEST_F(Data, ComesInOneForm) {
  EXPECT_EQ(user.run({"day", "--json", "--csv"}).status, 2);
  EXPECT_EQ(user.run({"usage", "--json", "--plain"}).status, 2);
}

}  // namespace
}  // namespace tessum
