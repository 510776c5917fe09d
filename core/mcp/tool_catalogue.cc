// The tools as they are listed to a model.

#include <string>
#include <utility>
#include <vector>

#include "core/base/limits.h"
#include "core/mcp/mcp_server.h"

namespace tessum {
namespace {

using json::Value;

constexpr char kDateDescription[] = "ISO 8601 date string (YYYY-MM-DD). Defaults to today.";

std::string limitDescription(std::int64_t limit) {
  return "Maximum number of results. Defaults to " + std::to_string(limit) + ".";
}

Value property(const char* type, std::string description) {
  return Value::Object{{"type", type}, {"description", std::move(description)}};
}

// Without required arguments the schema has no "required" at all.
Value schema(Value::Object properties, Value::Array required = {}) {
  Value::Object schema{{"type", "object"}, {"properties", std::move(properties)}};
  if (!required.empty()) schema.emplace("required", std::move(required));
  return schema;
}

}  // namespace

std::vector<MCPTool> MCPServer::availableTools() {
  return {
      {"get_activities",
       "Get logged activities (app usage) for a specific date. Returns a list of app sessions with "
       "start/end times.",
       schema({{"date", property("string", kDateDescription)},
               {"limit", property("integer", limitDescription(limits::kActivitiesPerCall))}})},
      {"search_activities", "Search logged activities by app name or window title.",
       schema({{"query", property("string",
                                  "Search term to match against app name or window "
                                  "title.")},
               {"limit", property("integer", limitDescription(limits::kSearchResultsPerCall))}},
              {"query"})},
      {"get_app_usage", "Get a summary of time spent per application for a specific date.",
       schema({{"date", property("string", kDateDescription)}})},
      {"annotate",
       "Add a context annotation describing what the user is working on. Automatically ends any "
       "previous annotation. Call with empty text to just stop the current annotation.",
       schema({{"text", property("string",
                                 "What the user is working on, e.g. 'Reviewing PR #42' or 'Fixing "
                                 "auth bug'. Empty string ends the current annotation without "
                                 "starting a new one.")},
               {"duration", property("string",
                                     "Optional. How long this task has already been going on, e.g. "
                                     "'30m', '1h', '1h30m'. If set, the annotation is backdated by "
                                     "this amount.")}},
              {"text"})},
      {"get_annotations",
       "Get context annotations for a specific date. Shows what the user reported working on.",
       schema({{"date", property("string", kDateDescription)}})},
  };
}

JSONRPCResponse MCPServer::handleToolsList(const JSONRPCRequest& request) {
  return {request.id, AnyCodable(toJson(MCPToolsListResult{availableTools()}))};
}

}  // namespace tessum
