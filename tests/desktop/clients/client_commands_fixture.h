// The client commands of the real program, run as a person runs them.

#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "core/json/field.h"
#include "core/json/reader.h"
#include "core/json/writer.h"
#include "tests/desktop/clients/client_user.h"

namespace tessum {

namespace fs = std::filesystem;

inline constexpr char kClaudeFile[] = TESSUM_CLAUDE_FILE;
inline constexpr char kCursorFile[] = ".cursor/mcp.json";
inline constexpr char kWindsurfFile[] = ".codeium/windsurf/mcp_config.json";
inline constexpr char kContinueFile[] = ".continue/mcpServers/tessum.json";
inline constexpr char kCataloguedContinueFile[] = ".continue/config.json";
inline constexpr char kHttpConfig[] =
    R"({"mcpServers":{"tessum":{"url":"http:\/\/localhost:7384\/mcp"}}})";

inline constexpr std::uint16_t kEndpointPort = 7384;

// The server beside the program.
inline std::string serverPath() {
  return fs::path(TESSUM_PROGRAM).parent_path().string() + "/TessumMCP";
}

class ClientCommands : public testing::Test {
 protected:
  [[nodiscard]] std::string config(const char* name) const {
    return json::compact(json::parse(readFile(user_.file(name))));
  }

  [[nodiscard]] std::string command(const char* name) const {
    const json::Value document = json::parse(readFile(user_.file(name)));
    const json::Field servers = json::Field(document).required("mcpServers");
    const json::Field entry = servers.required("tessum");
    EXPECT_TRUE(entry.required("args").elements().empty());
    return entry.required("command").text();
  }

  // Makes the folders by which the core's applications are known to be here.
  void makeFolders() const {
    for (const char* name : {kClaudeFile, kCursorFile, kWindsurfFile, kContinueFile}) {
      static_cast<void>(user_.file(name));
    }
  }

  // The table's row for the file `name`, with single blanks between words; empty when there is
  // none.
  [[nodiscard]] std::string row(const char* name) const {
    const ClientRun run = user_.run({"clients"});
    EXPECT_EQ(run.status, 0);
    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);) {
      if (!line.ends_with(user_.home() + "/" + name)) continue;
      const auto isSecondBlank = [](char a, char b) { return a == ' ' && b == ' '; };
      line.erase(std::unique(line.begin(), line.end(), isSecondBlank), line.end());
      return line.substr(1, line.rfind(user_.home()) - 2);
    }
    return "";
  }

  const ClientUser user_{};
};

}  // namespace tessum
