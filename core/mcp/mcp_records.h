// The records that MCP methods answer with.

#pragma once

#include <string>
#include <vector>

#include "core/json/value.h"

namespace tessum {

// The capabilities are always both named and always empty: everything is offered from the start.
struct MCPCapabilities {
  json::Value::Object tools;
  json::Value::Object resources;
};

struct MCPServerInfo {
  std::string name = "tessum";
  std::string version = "1.0.0";
};

struct MCPInitializeResult {
  std::string protocolVersion = "2024-11-05";
  MCPCapabilities capabilities;
  MCPServerInfo serverInfo;
};

struct MCPTool {
  std::string name;
  std::string description;  // for the model
  json::Value inputSchema;  // JSON Schema of the arguments
};

struct MCPToolsListResult {
  std::vector<MCPTool> tools;
};

struct MCPTextContent {
  std::string type = "text";
  std::string text;
};

// What a tool call ends with: one text. A failure of the tool is a result, too.
struct MCPToolResult {
  std::vector<MCPTextContent> content;
  bool isError = false;
};

struct MCPResource {
  std::string uri;
  std::string name;
  std::string description;
  std::string mimeType;
};

struct MCPResourcesListResult {
  std::vector<MCPResource> resources;
};

struct MCPResourceContent {
  std::string uri;  // as the client sent it
  std::string mimeType = "text/plain";
  std::string text;
};

struct MCPResourceReadResult {
  std::vector<MCPResourceContent> contents;
};

// The JSON form of a record: its member names are the keys. Taken by value, since a text may be
// large and is moved along.
[[nodiscard]] json::Value toJson(MCPInitializeResult result);
[[nodiscard]] json::Value toJson(MCPToolsListResult result);
[[nodiscard]] json::Value toJson(MCPToolResult result);
[[nodiscard]] json::Value toJson(MCPResourcesListResult result);
[[nodiscard]] json::Value toJson(MCPResourceReadResult result);

}  // namespace tessum
