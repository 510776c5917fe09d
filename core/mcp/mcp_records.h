// The records that MCP methods answer with.

#pragma once

#include <string>
#include <vector>

#include "core/json/value.h"
#include "core/mcp/any_codable.h"

namespace tessum {

// Both are always written, and always empty: the server has no optional features.
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
  AnyCodable inputSchema;   // JSON Schema of the arguments
};

struct MCPToolsListResult {
  std::vector<MCPTool> tools;
};

struct MCPTextContent {
  std::string type = "text";
  std::string text;
};

// The result of a tool call: one text, also when the tool failed.
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

// The record as compact JSON: its member names are the keys.
[[nodiscard]] std::string encode(const MCPInitializeResult& result);
[[nodiscard]] std::string encode(const MCPToolsListResult& result);
[[nodiscard]] std::string encode(const MCPToolResult& result);
[[nodiscard]] std::string encode(const MCPResourcesListResult& result);
[[nodiscard]] std::string encode(const MCPResourceReadResult& result);

}  // namespace tessum
