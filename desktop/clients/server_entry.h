// Our entry in an application's configuration file.

#pragma once

#include <string_view>

#include "core/json/value.h"
#include "desktop/host/host.h"

namespace tessum {

enum class Syntax { json, toml };

// How an application keeps its servers: a table of a root object, by the servers' names.
struct ServerFormat {
  Syntax syntax = Syntax::json;
  std::string_view container = "mcpServers";

  // The key of an HTTP endpoint's URL.
  std::string_view urlKey = "url";

  // Whether entries say their "type", "stdio" or "http".
  bool hasStdioType = false;
  bool hasHttpType = false;

  // Whether an entry that starts a program has an "env".
  bool hasEnvironment = false;
};

enum class EntryForm {
  stdio,  // starts the stdio server
  http    // names the endpoint of "Tessum record --http"
};

// The key of our entry among the servers.
inline constexpr std::string_view kEntryKey = "tessum";

// Our entry as the application expects it. Throws std::runtime_error when there is no stdio server
// beside this program, because no application could use that entry.
[[nodiscard]] json::Value serverEntry(const ServerFormat& format, EntryForm form, const Host& host);

// Whether `entry` works as `wanted` does: what a person added to it, such as an environment, is
// left alone.
[[nodiscard]] bool worksLike(const json::Value& entry, const json::Value& wanted);

}  // namespace tessum
