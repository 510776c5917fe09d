// The tools as they are listed to a model.

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/limits.h"
#include "core/json/writer.h"
#include "core/mcp/mcp_server.h"

namespace tessum {
namespace {

using json::ObjectWriter;

constexpr bool kRequired = true;
constexpr char kDateDescription[] = "ISO 8601 date string (YYYY-MM-DD). Defaults to today.";

std::string limitDescription(std::int64_t limit) {
  return "Maximum number of results. Defaults to " + std::to_string(limit) + ".";
}

struct Argument {
  std::string_view name;
  std::string_view type;
  std::string description;
  bool isRequired = false;
};

// Without required arguments the schema has no "required" at all.
AnyCodable schema(std::initializer_list<Argument> arguments) {
  std::string required;
  std::string out;
  ObjectWriter schema(out);
  ObjectWriter properties(schema.member("properties"));
  for (const Argument& argument : arguments) {
    ObjectWriter property(properties.member(argument.name));
    property.text("description", argument.description);
    property.text("type", argument.type);
    property.end();
    if (!argument.isRequired) continue;
    required += required.empty() ? '[' : ',';
    json::appendString(required, argument.name);
  }
  properties.end();
  if (!required.empty()) schema.member("required") += required + "]";
  schema.text("type", "object");
  schema.end();
  return AnyCodable::encoded(std::move(out));
}

}  // namespace

std::vector<MCPTool> MCPServer::availableTools() {
  return {
      {"get_activities",
       "Get logged activities (app usage) for a specific date. Returns a list of app sessions with "
       "start/end times.",
       schema({{"date", "string", kDateDescription},
               {"limit", "integer", limitDescription(limits::kActivitiesPerCall)}})},
      {"search_activities", "Search logged activities by app name or window title.",
       schema({{"limit", "integer", limitDescription(limits::kSearchResultsPerCall)},
               {"query", "string", "Search term to match against app name or window title.",
                kRequired}})},
      {"get_app_usage", "Get a summary of time spent per application for a specific date.",
       schema({{"date", "string", kDateDescription}})},
      {"annotate",
       "Add a context annotation describing what the user is working on. Automatically ends any "
       "previous annotation. Call with empty text to just stop the current annotation.",
       schema({{"duration", "string",
                "Optional. How long this task has already been going on, e.g. '30m', '1h', "
                "'1h30m'. If set, the annotation is backdated by this amount."},
               {"text", "string",
                "What the user is working on, e.g. 'Reviewing PR #42' or 'Fixing auth bug'. Empty "
                "string ends the current annotation without starting a new one.",
                kRequired}})},
      {"get_annotations",
       "Get context annotations for a specific date. Shows what the user reported working on.",
       schema({{"date", "string", kDateDescription}})},
  };
}

JSONRPCResponse MCPServer::handleToolsList(const JSONRPCRequest& request) {
  return {request.id, AnyCodable::encoded(encode(MCPToolsListResult{availableTools()}))};
}

}  // namespace tessum
