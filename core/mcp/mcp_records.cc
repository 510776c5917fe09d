#include "core/mcp/mcp_records.h"

#include "core/json/writer.h"

namespace tessum {
namespace {

using json::ObjectWriter;

void appendJson(std::string& out, const MCPCapabilities& capabilities) {
  ObjectWriter writer(out);
  json::appendCompact(writer.member("resources"), capabilities.resources);
  json::appendCompact(writer.member("tools"), capabilities.tools);
  writer.end();
}

void appendJson(std::string& out, const MCPServerInfo& info) {
  ObjectWriter writer(out);
  writer.text("name", info.name);
  writer.text("version", info.version);
  writer.end();
}

void appendJson(std::string& out, const MCPTool& tool) {
  ObjectWriter writer(out);
  writer.text("description", tool.description);
  writer.member("inputSchema") += tool.inputSchema.json();
  writer.text("name", tool.name);
  writer.end();
}

void appendJson(std::string& out, const MCPTextContent& content) {
  ObjectWriter writer(out);
  writer.text("text", content.text);
  writer.text("type", content.type);
  writer.end();
}

void appendJson(std::string& out, const MCPResource& resource) {
  ObjectWriter writer(out);
  writer.text("description", resource.description);
  writer.text("mimeType", resource.mimeType);
  writer.text("name", resource.name);
  writer.text("uri", resource.uri);
  writer.end();
}

void appendJson(std::string& out, const MCPResourceContent& content) {
  ObjectWriter writer(out);
  writer.text("mimeType", content.mimeType);
  writer.text("text", content.text);
  writer.text("uri", content.uri);
  writer.end();
}

template <typename Record>
void appendJson(std::string& out, const std::vector<Record>& records) {
  out += '[';
  for (const Record& record : records) {
    if (&record != &records.front()) out += ',';
    appendJson(out, record);
  }
  out += ']';
}

// Reserves memory for a result whose text may be large. A report needs few escapes besides its line
// ends; a text that needs more makes the string grow.
void reserveFor(std::string& out, const std::string& text) {
  constexpr std::size_t kRestOfResult = 256;
  out.reserve(text.size() + text.size() / 16 + kRestOfResult);
}

}  // namespace

std::string encode(const MCPInitializeResult& result) {
  std::string out;
  ObjectWriter writer(out);
  appendJson(writer.member("capabilities"), result.capabilities);
  writer.text("protocolVersion", result.protocolVersion);
  appendJson(writer.member("serverInfo"), result.serverInfo);
  writer.end();
  return out;
}

std::string encode(const MCPToolsListResult& result) {
  std::string out;
  ObjectWriter writer(out);
  appendJson(writer.member("tools"), result.tools);
  writer.end();
  return out;
}

std::string encode(const MCPToolResult& result) {
  std::string out;
  reserveFor(out, result.content.front().text);
  ObjectWriter writer(out);
  appendJson(writer.member("content"), result.content);
  writer.boolean("isError", result.isError);
  writer.end();
  return out;
}

std::string encode(const MCPResourcesListResult& result) {
  std::string out;
  ObjectWriter writer(out);
  appendJson(writer.member("resources"), result.resources);
  writer.end();
  return out;
}

std::string encode(const MCPResourceReadResult& result) {
  std::string out;
  ObjectWriter writer(out);
  appendJson(writer.member("contents"), result.contents);
  writer.end();
  return out;
}

}  // namespace tessum
