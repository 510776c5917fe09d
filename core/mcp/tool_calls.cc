// Runs the tools.

#include <exception>
#include <string>
#include <utility>

#include "core/base/limits.h"
#include "core/base/text.h"
#include "core/mcp/date_argument.h"
#include "core/mcp/duration_argument.h"
#include "core/mcp/mcp_server.h"
#include "core/mcp/reports.h"

namespace tessum {
namespace {

std::optional<std::string> textArgument(const AnyCodable& arguments, std::string_view name) {
  const auto argument = arguments.member(name);
  return argument ? argument->text() : std::nullopt;
}

std::int64_t limitArgument(const AnyCodable& arguments, std::int64_t otherwise) {
  const auto argument = arguments.member("limit");
  return argument ? argument->integer().value_or(otherwise) : otherwise;
}

MCPToolResult success(std::string text) {
  return {.content = {{.text = std::move(text)}}, .isError = false};
}

MCPToolResult failure(std::string text) {
  return {.content = {{.text = std::move(text)}}, .isError = true};
}

// The moment `duration` before `now`; absent when the duration cannot be read or reaches back
// before the year 1, which no text could show.
std::optional<Date> backdated(Date now, const std::optional<std::string>& duration) {
  const auto seconds = duration ? parseDuration(*duration) : std::nullopt;
  if (!seconds) return std::nullopt;
  const Date start = movedBy(now, -static_cast<double>(*seconds));
  if (start.secondsSince1970 < kStartOfYearOne.secondsSince1970) return std::nullopt;
  return start;
}

}  // namespace

JSONRPCResponse MCPServer::handleToolsCall(const JSONRPCRequest& request) {
  const auto name = request.params ? textArgument(*request.params, "name") : std::nullopt;
  if (!name) {
    return {request.id, JSONRPCError{error_code::kInvalidParams, "Invalid params: missing 'name'"}};
  }
  // What is not an object has no members, so the tool then runs with its defaults.
  const AnyCodable arguments = request.params->member("arguments").value_or(AnyCodable());
  MCPToolResult result;
  try {
    result = callTool(*name, arguments);
  } catch (const std::exception& error) {
    result = failure("Error: " + validUtf8(error.what()));
  }
  return {request.id, AnyCodable::encoded(encode(result))};
}

MCPToolResult MCPServer::callTool(std::string_view name, const AnyCodable& arguments) {
  if (name == "get_activities") {
    return success(activityReport(dayArgument(arguments),
                                  limitArgument(arguments, limits::kActivitiesPerCall)));
  }
  if (name == "search_activities") {
    const auto query = textArgument(arguments, "query");
    if (!query) return failure("Error: 'query' is required");
    ActivityReport report;
    database_->searchActivities(*query, limitArgument(arguments, limits::kSearchResultsPerCall),
                                [&](const Activity& activity) { report.add(activity); });
    return success(std::move(report).finish());
  }
  if (name == "get_app_usage") {
    return success(formatUsage(database_->appUsage(dayArgument(arguments))));
  }
  if (name == "annotate") return annotate(arguments);
  if (name == "get_annotations") {
    return success(formatAnnotations(
        database_->fetchAnnotations(dayArgument(arguments), limits::kAnnotationsPerReport),
        clock_));
  }
  return failure("Unknown tool: " + std::string(name));
}

MCPToolResult MCPServer::annotate(const AnyCodable& arguments) {
  const std::string given = textArgument(arguments, "text").value_or("");
  const std::string text(trimWhiteSpace(given));
  const Date now = clock_.now();
  if (text.empty()) {
    database_->endCurrentAnnotation(now);
    return success("Ended current annotation.");
  }
  const Date start = backdated(now, textArgument(arguments, "duration")).value_or(now);
  database_->insertAnnotation({.id = {}, .text = text, .startedAt = start, .endedAt = {}});
  return success("Annotation started: " + text + " (since " + internetDateTime(start) + ")");
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

Date MCPServer::dayArgument(const AnyCodable& arguments) const {
  const auto text = textArgument(arguments, "date");
  const auto date = text ? parseDate(*text, calendar_) : std::nullopt;
  return date ? *date : clock_.now();
}

}  // namespace tessum
