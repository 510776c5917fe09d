#include "core/mcp/mcp_server.h"

#include <utility>

namespace tessum {
namespace {

struct Method {
  std::string_view name;
  JSONRPCResponse (MCPServer::*handler)(const JSONRPCRequest&);
};

constexpr Method kMethods[] = {
    {"initialize", &MCPServer::handleInitialize},
    {"tools/list", &MCPServer::handleToolsList},
    {"tools/call", &MCPServer::handleToolsCall},
    {"resources/list", &MCPServer::handleResourcesList},
    {"resources/read", &MCPServer::handleResourcesRead},
};

}  // namespace

MCPServer::MCPServer(std::shared_ptr<Database> database, std::uint16_t port, const Clock& clock,
                     const Calendar& calendar)
    : database_(std::move(database)), port_(port), clock_(clock), calendar_(calendar) {}

std::optional<std::string> MCPServer::handleBody(json::PaddedView body) {
  try {
    const JSONRPCRequest request = JSONRPCRequest::decode(body);
    if (!request.id) return std::nullopt;
    return handle(request).encode();
  } catch (const json::DecodingError& error) {
    const JSONRPCError parseError{error_code::kParseError, "Parse error: " + error.description()};
    return JSONRPCResponse(std::nullopt, parseError).encode();
  }
}

JSONRPCResponse MCPServer::handle(const JSONRPCRequest& request) {
  for (const Method& method : kMethods) {
    if (request.method == method.name) return (this->*method.handler)(request);
  }
  return {request.id,
          JSONRPCError{error_code::kMethodNotFound, "Method not found: " + request.method}};
}

JSONRPCResponse MCPServer::handleInitialize(const JSONRPCRequest& request) {
  return {request.id, AnyCodable::encoded(encode(MCPInitializeResult()))};
}

}  // namespace tessum
