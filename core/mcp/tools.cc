// The tools: what a model reads of each, and what each does.

#include <exception>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "core/base/described_error.h"
#include "core/base/limits.h"
#include "core/base/text.h"
#include "core/json/writer.h"
#include "core/mcp/date_argument.h"
#include "core/mcp/duration_argument.h"
#include "core/mcp/mcp_server.h"
#include "core/mcp/reports.h"

namespace tessum {
namespace {

struct Argument {
  std::string_view name;
  std::string_view type;
  std::string_view description;
  bool isRequired = false;
};

constexpr bool kRequired = true;
constexpr Argument kDate{"date", "string", "ISO 8601 date string (YYYY-MM-DD). Defaults to today."};

// The JSON Schema of a tool's arguments. Without required ones it has no "required" at all.
AnyCodable schemaOf(std::initializer_list<Argument> arguments) {
  std::string required;
  std::string out;
  json::ObjectWriter schema(out);
  json::ObjectWriter properties(schema.member("properties"));
  for (const Argument& argument : arguments) {
    json::ObjectWriter property(properties.member(argument.name));
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

MCPToolResult resultOf(std::string text, bool isError) {
  MCPToolResult result{.content = {}, .isError = isError};
  result.content.push_back({.text = std::move(text)});
  return result;
}

MCPToolResult success(std::string text) {
  return resultOf(std::move(text), false);
}

MCPToolResult failure(std::string text) {
  return resultOf(std::move(text), true);
}

// The moment `duration` before `now`; absent when the duration cannot be read, or reaches back
// before the year 1, for which there is no time stamp.
std::optional<Date> backdated(Date now, const std::optional<std::string>& duration) {
  const auto seconds = duration ? parseDuration(*duration) : std::nullopt;
  if (!seconds) return std::nullopt;
  const Date start = movedBy(now, -static_cast<double>(*seconds));
  if (start.secondsSince1970 < kStartOfYearOne.secondsSince1970) return std::nullopt;
  return start;
}

}  // namespace

struct MCPServer::Tool {
  std::string_view name;
  std::string_view description;
  std::initializer_list<Argument> arguments;  // in the order in which they are listed
  MCPToolResult (MCPServer::*handler)(const ToolArguments&);
};

std::span<const MCPServer::Tool> MCPServer::tools() {
  // The descriptions of "limit" name these numbers.
  static_assert(limits::kActivitiesPerCall == 100 && limits::kSearchResultsPerCall == 50);

  static const Tool kTools[] = {
      {"get_activities",
       "Get logged activities (app usage) for a specific date. Returns a list of app sessions with "
       "start/end times.",
       {kDate, {"limit", "integer", "Maximum number of results. Defaults to 100."}},
       &MCPServer::getActivities},
      {"search_activities",
       "Search logged activities by app name or window title.",
       {{"limit", "integer", "Maximum number of results. Defaults to 50."},
        {"query", "string", "Search term to match against app name or window title.", kRequired}},
       &MCPServer::searchActivities},
      {"get_app_usage",
       "Get a summary of time spent per application for a specific date.",
       {kDate},
       &MCPServer::getAppUsage},
      {"annotate",
       "Add a context annotation describing what the user is working on. Automatically ends any "
       "previous annotation. Call with empty text to just stop the current annotation.",
       {{"duration", "string",
         "Optional. How long this task has already been going on, e.g. '30m', '1h', '1h30m'. If "
         "set, the annotation is backdated by this amount."},
        {"text", "string",
         "What the user is working on, e.g. 'Reviewing PR #42' or 'Fixing auth bug'. Empty string "
         "ends the current annotation without starting a new one.",
         kRequired}},
       &MCPServer::annotate},
      {"get_annotations",
       "Get context annotations for a specific date. Shows what the user reported working on.",
       {kDate},
       &MCPServer::getAnnotations},
  };
  return kTools;
}

std::vector<MCPTool> MCPServer::availableTools() {
  std::vector<MCPTool> available;
  for (const Tool& tool : tools()) {
    available.push_back(
        {std::string(tool.name), std::string(tool.description), schemaOf(tool.arguments)});
  }
  return available;
}

JSONRPCResponse MCPServer::handleToolsList(const JSONRPCRequest& request) {
  // The list is the same in every answer.
  static const AnyCodable kResult =
      AnyCodable::encoded(encode(MCPToolsListResult{availableTools()}));
  return {request.id, kResult};
}

JSONRPCResponse MCPServer::handleToolsCall(const JSONRPCRequest& request) {
  const ToolCall call = request.params ? ToolCall::decode(*request.params) : ToolCall();
  if (!call.name) {
    return {request.id, JSONRPCError{error_code::kInvalidParams, "Invalid params: missing 'name'"}};
  }
  MCPToolResult result;
  try {
    result = callTool(*call.name, call.arguments);
  } catch (const std::exception& error) {
    result = failure("Error: " + validUtf8(descriptionOf(error)));
  }
  return {request.id, AnyCodable::encoded(encode(result))};
}

MCPToolResult MCPServer::callTool(std::string_view name, const ToolArguments& arguments) {
  for (const Tool& tool : tools()) {
    if (name == tool.name) return (this->*tool.handler)(arguments);
  }
  return failure("Unknown tool: " + std::string(name));
}

MCPToolResult MCPServer::getActivities(const ToolArguments& arguments) {
  return success(
      activityReport(dayOf(arguments), arguments.limit.value_or(limits::kActivitiesPerCall)));
}

MCPToolResult MCPServer::searchActivities(const ToolArguments& arguments) {
  if (!arguments.query) return failure("Error: 'query' is required");
  ActivityReport report;
  database_->searchActivities(*arguments.query,
                              arguments.limit.value_or(limits::kSearchResultsPerCall),
                              [&](const Activity& activity) { report.add(activity); });
  return success(std::move(report).finish());
}

MCPToolResult MCPServer::getAppUsage(const ToolArguments& arguments) {
  return success(formatUsage(database_->appUsage(dayOf(arguments))));
}

MCPToolResult MCPServer::annotate(const ToolArguments& arguments) {
  const std::string text(trimWhiteSpace(arguments.text.value_or("")));
  const Date now = clock_.now();
  if (text.empty()) {
    database_->endCurrentAnnotation(now);
    return success("Ended current annotation.");
  }
  const Date start = backdated(now, arguments.duration).value_or(now);
  database_->insertAnnotation({.id = {}, .text = text, .startedAt = start, .endedAt = {}});
  return success("Annotation started: " + text + " (since " + internetDateTime(start) + ")");
}

MCPToolResult MCPServer::getAnnotations(const ToolArguments& arguments) {
  return success(formatAnnotations(
      database_->fetchAnnotations(dayOf(arguments), limits::kAnnotationsPerReport), clock_));
}

std::string MCPServer::activityReport(Date day, std::int64_t limit) {
  ActivityReport activities;
  database_->fetchActivities(day, limit,
                             [&](const Activity& activity) { activities.add(activity); });
  const auto annotations = database_->fetchAnnotations(day, limits::kAnnotationsPerReport);
  std::string report = std::move(activities).finish();
  if (!annotations.empty()) report += "\n\n" + formatAnnotations(annotations, clock_);
  return report;
}

Date MCPServer::dayOf(const ToolArguments& arguments) const {
  const auto date = arguments.date ? parseDate(*arguments.date, calendar_) : std::nullopt;
  return date ? *date : clock_.now();
}

}  // namespace tessum
