#include "core/mcp/mcp_records.h"

#include <utility>

namespace tessum {
namespace {

using json::Value;

// An object whose member values are moved into it.
template <typename... Members>
Value object(Members&&... members) {
  Value::Object object;
  (object.insert(std::forward<Members>(members)), ...);
  return object;
}

std::pair<std::string, Value> member(const char* key, Value value) {
  return {key, std::move(value)};
}

Value toJson(MCPTool tool) {
  return object(member("name", std::move(tool.name)),
                member("description", std::move(tool.description)),
                member("inputSchema", std::move(tool.inputSchema)));
}

Value toJson(MCPTextContent content) {
  return object(member("type", std::move(content.type)), member("text", std::move(content.text)));
}

Value toJson(MCPResource resource) {
  return object(member("uri", std::move(resource.uri)), member("name", std::move(resource.name)),
                member("description", std::move(resource.description)),
                member("mimeType", std::move(resource.mimeType)));
}

Value toJson(MCPResourceContent content) {
  return object(member("uri", std::move(content.uri)),
                member("mimeType", std::move(content.mimeType)),
                member("text", std::move(content.text)));
}

template <typename Record>
Value array(std::vector<Record> records) {
  Value::Array elements;
  elements.reserve(records.size());
  for (Record& record : records) elements.push_back(toJson(std::move(record)));
  return elements;
}

}  // namespace

Value toJson(MCPInitializeResult result) {
  return object(
      member("protocolVersion", std::move(result.protocolVersion)),
      member("capabilities", object(member("tools", std::move(result.capabilities.tools)),
                                    member("resources", std::move(result.capabilities.resources)))),
      member("serverInfo", object(member("name", std::move(result.serverInfo.name)),
                                  member("version", std::move(result.serverInfo.version)))));
}

Value toJson(MCPToolsListResult result) {
  return object(member("tools", array(std::move(result.tools))));
}

Value toJson(MCPToolResult result) {
  return object(member("content", array(std::move(result.content))),
                member("isError", result.isError));
}

Value toJson(MCPResourcesListResult result) {
  return object(member("resources", array(std::move(result.resources))));
}

Value toJson(MCPResourceReadResult result) {
  return object(member("contents", array(std::move(result.contents))));
}

}  // namespace tessum
