#include "tests/mcp/engine_fixture.h"

namespace tessum {
namespace {

constexpr char kCatalogue[] = R"json({"tools":[
{"name":"get_activities",
 "description":"Get logged activities (app usage) for a specific date. Returns a list of app sessions with start/end times.",
 "inputSchema":{"type":"object","properties":{
  "date":{"type":"string","description":"ISO 8601 date string (YYYY-MM-DD). Defaults to today."},
  "limit":{"type":"integer","description":"Maximum number of results. Defaults to 100."}}}},
{"name":"search_activities",
 "description":"Search logged activities by app name or window title.",
 "inputSchema":{"type":"object","properties":{
  "query":{"type":"string","description":"Search term to match against app name or window title."},
  "limit":{"type":"integer","description":"Maximum number of results. Defaults to 50."}},
  "required":["query"]}},
{"name":"get_app_usage",
 "description":"Get a summary of time spent per application for a specific date.",
 "inputSchema":{"type":"object","properties":{
  "date":{"type":"string","description":"ISO 8601 date string (YYYY-MM-DD). Defaults to today."}}}},
{"name":"annotate",
 "description":"Add a context annotation describing what the user is working on. Automatically ends any previous annotation. Call with empty text to just stop the current annotation.",
 "inputSchema":{"type":"object","properties":{
  "text":{"type":"string","description":"What the user is working on, e.g. 'Reviewing PR #42' or 'Fixing auth bug'. Empty string ends the current annotation without starting a new one."},
  "duration":{"type":"string","description":"Optional. How long this task has already been going on, e.g. '30m', '1h', '1h30m'. If set, the annotation is backdated by this amount."}},
  "required":["text"]}},
{"name":"get_annotations",
 "description":"Get context annotations for a specific date. Shows what the user reported working on.",
 "inputSchema":{"type":"object","properties":{
  "date":{"type":"string","description":"ISO 8601 date string (YYYY-MM-DD). Defaults to today."}}}}
]})json";

TEST_F(EngineTest, ListsItsFiveToolsInOrderWhateverTheParams) {
  const json::Value expected = json::parse(kCatalogue);
  EXPECT_EQ(*member(answer(R"({"jsonrpc":"2.0","id":"x","method":"tools/list"})"), "result"),
            expected);
  for (const char* params : {"{}", "[1]", "\"x\"", R"({"cursor":"abc"})"}) {
    EXPECT_EQ(*member(call(R"("tools/list")", params), "result"), expected) << params;
  }
}

}  // namespace
}  // namespace tessum
