// The resources: three reports that take no arguments.

#include <exception>
#include <utility>

#include "core/base/described_error.h"
#include "core/base/limits.h"
#include "core/base/text.h"
#include "core/mcp/mcp_server.h"
#include "core/mcp/reports.h"

namespace tessum {
namespace {

constexpr char kToday[] = "tessum://activities/today";
constexpr char kYesterday[] = "tessum://activities/yesterday";
constexpr char kUsageToday[] = "tessum://usage/today";
constexpr char kPlainText[] = "text/plain";

// The member "uri" when it is a text.
std::optional<std::string> uriOf(const AnyCodable& params) {
  std::optional<std::string> uri;
  params.forEachMember([&](const json::Member& member) {
    if (member.key == "uri") uri = member.text;
  });
  return uri;
}

}  // namespace

JSONRPCResponse MCPServer::handleResourcesList(const JSONRPCRequest& request) {
  const MCPResourcesListResult result{
      {{kToday, "Today's Activities", "All logged app sessions for today.", kPlainText},
       {kYesterday, "Yesterday's Activities", "All logged app sessions for yesterday.", kPlainText},
       {kUsageToday, "Today's App Usage Summary", "Time spent per application today.",
        kPlainText}}};
  return {request.id, AnyCodable::encoded(encode(result))};
}

// A read that fails is a JSON-RPC error, unlike a tool that fails: its result has no place for an
// error.
JSONRPCResponse MCPServer::handleResourcesRead(const JSONRPCRequest& request) {
  const auto uri = request.params ? uriOf(*request.params) : std::nullopt;
  if (!uri) {
    return {request.id, JSONRPCError{error_code::kInvalidParams, "Invalid params: missing 'uri'"}};
  }
  try {
    return {request.id, AnyCodable::encoded(encode(readResource(*uri)))};
  } catch (const std::exception& error) {
    return {request.id, JSONRPCError{error_code::kInternalError, validUtf8(descriptionOf(error))}};
  }
}

MCPResourceReadResult MCPServer::readResource(const std::string& uri) {
  const Date now = clock_.now();
  std::string text;
  if (uri == kToday) {
    text = activityReport(now, limits::kActivitiesPerResource);
  } else if (uri == kYesterday) {
    text = activityReport(calendar_.dayBefore(now), limits::kActivitiesPerResource);
  } else if (uri == kUsageToday) {
    text = formatUsage(database_->appUsage(now));
  } else {
    throw MCPServerError::unknownResource(uri);
  }
  return {{{.uri = uri, .text = std::move(text)}}};
}

}  // namespace tessum
