#include "desktop/clients/assistants.h"

#include <algorithm>

#include "core/base/text.h"
#include "core/install/mcp_client.h"

namespace tessum {
namespace {

std::string catalogued(MCPClient client, const Locations& locations) {
  return client.configPath(locations);
}

// The folder of a file.
std::string folderOf(const std::string& file) {
  return file.substr(0, file.rfind('/'));
}

// One that reads the file that the catalogue names.
Assistant cataloguedAssistant(std::string_view id, MCPClient client, const Locations& locations) {
  const std::string file = catalogued(client, locations);
  return {.id = id, .name = client.displayName(), .files = {file}, .signs = {folderOf(file)}};
}

Assistant claudeDesktop(const Locations& locations) {
  auto assistant = cataloguedAssistant("claude-desktop", MCPClient::claudeDesktop, locations);
  const std::string file = claudeDesktopFile(locations);
  if (file != assistant.files.front()) assistant.files.insert(assistant.files.begin(), file);
  assistant.signs = {folderOf(file)};
  return assistant;
}

// Continue reads every JSON file of this folder, and no longer the servers of its config.json;
// creating that file even prevents its first-time setup.
Assistant continueApp(const Locations& locations) {
  auto assistant = cataloguedAssistant("continue", MCPClient::continueApp, locations);
  const std::string folder = locations.homeFolder() + "/.continue";
  assistant.files.insert(assistant.files.begin(), folder + "/mcpServers/tessum.json");
  assistant.signs = {folder};
  return assistant;
}

}  // namespace

std::vector<Assistant> knownAssistants(const Locations& locations) {
  const std::string home = locations.homeFolder();
  const std::string code = visualStudioCodeFolder(locations);
  const std::string zed = zedFolder(locations);
  return {
      claudeDesktop(locations),
      cataloguedAssistant("cursor", MCPClient::cursor, locations),
      cataloguedAssistant("windsurf", MCPClient::windsurf, locations),
      continueApp(locations),
      {.id = "claude-code",
       .name = "Claude Code",
       .format = {.hasHttpType = true},
       .files = {home + "/.claude.json"},
       .signs = {home + "/.claude", home + "/.claude.json"}},
      {.id = "vscode",
       .name = "VS Code",
       .format = {.container = "servers", .hasStdioType = true, .hasHttpType = true},
       .files = {code + "/User/mcp.json"},
       .signs = {code}},
      {.id = "gemini",
       .name = "Gemini CLI",
       .format = {.urlKey = "httpUrl"},
       .files = {home + "/.gemini/settings.json"},
       .signs = {home + "/.gemini"}},
      {.id = "lm-studio",
       .name = "LM Studio",
       .files = {home + "/.lmstudio/mcp.json"},
       .signs = {home + "/.lmstudio"}},
      {.id = "zed",
       .name = "Zed",
       .format = {.container = "context_servers", .hasEnvironment = true},
       .files = {zed + "/settings.json"},
       .signs = {zed}},
      {.id = "codex",
       .name = "Codex CLI",
       .format = {.syntax = Syntax::toml, .container = "mcp_servers"},
       .files = {home + "/.codex/config.toml"},
       .signs = {home + "/.codex"}},
  };
}

std::optional<Assistant> assistantNamed(std::string_view name, const Locations& locations) {
  const std::string wanted = lowerCaseAscii(name);
  for (Assistant& assistant : knownAssistants(locations)) {
    if (wanted == assistant.id || wanted == lowerCaseAscii(assistant.name)) return assistant;
  }
  return std::nullopt;
}

bool isPresent(const Assistant& assistant, const Files& files) {
  return std::any_of(assistant.signs.begin(), assistant.signs.end(),
                     [&](const std::string& sign) { return files.exists(sign); });
}

}  // namespace tessum
