#include "core/install/mcp_client.h"

#include <gtest/gtest.h>

#include <string>
#include <unordered_set>

#include "tests/support/fakes/fake_locations.h"

namespace tessum {
namespace {

TEST(MCPClient, AllCasesComeInTheOrderOfLists) {
  const auto& all = MCPClient::allCases();
  ASSERT_EQ(all.size(), 4u);
  EXPECT_EQ(all[0], MCPClient::claudeDesktop);
  EXPECT_EQ(all[1], MCPClient::cursor);
  EXPECT_EQ(all[2], MCPClient::windsurf);
  EXPECT_EQ(all[3], MCPClient::continueApp);
}

struct Row {
  MCPClient client;
  const char* name;
  bool prefersStdio;
  const char* path;
};

class Catalogue : public testing::TestWithParam<Row> {};

TEST_P(Catalogue, KnowsNamePathAndForm) {
  const auto& [client, name, prefersStdio, path] = GetParam();
  EXPECT_EQ(client.rawValue(), name);
  EXPECT_EQ(client.displayName(), name);
  EXPECT_EQ(client.prefersStdio(), prefersStdio);
  EXPECT_EQ(client.configPath(FakeLocations()), path);
  EXPECT_EQ(MCPClient::fromRawValue(name), client);
}

INSTANTIATE_TEST_SUITE_P(
    Clients, Catalogue,
    testing::Values(
        Row{MCPClient::claudeDesktop, "Claude Desktop", true,
            "/Users/ann/Library/Application Support/Claude/claude_desktop_config.json"},
        Row{MCPClient::cursor, "Cursor", false, "/Users/ann/.cursor/mcp.json"},
        Row{MCPClient::windsurf, "Windsurf", false, "/Users/ann/.codeium/windsurf/mcp_config.json"},
        Row{MCPClient::continueApp, "Continue", false, "/Users/ann/.continue/config.json"}));

TEST(MCPClient, OnlyTheExactRawValueNamesAClient) {
  for (const char* text : {"", "cursor", "CURSOR", "Cursor ", " Cursor", "continueApp", "continue",
                           "claudeDesktop", "ClaudeDesktop", "Claude  Desktop", "Claude", "Zed"}) {
    EXPECT_EQ(MCPClient::fromRawValue(text), std::nullopt) << text;
  }
}

TEST(MCPClient, ThePathFollowsTheHomeFolderAtEachCall) {
  FakeLocations locations;
  locations.home = "/home/bob";
  const MCPClient client = MCPClient::cursor;
  EXPECT_EQ(client.configPath(locations), "/home/bob/.cursor/mcp.json");
  locations.home = "/home/~$HOME/../é";  // taken as it is
  EXPECT_EQ(client.configPath(locations), "/home/~$HOME/../é/.cursor/mcp.json");
}

TEST(MCPClient, CanBeAKey) {
  const auto& all = MCPClient::allCases();
  std::unordered_set<MCPClient> clients(all.begin(), all.end());
  clients.insert(MCPClient::cursor);
  EXPECT_EQ(clients.size(), 4u);
}

}  // namespace
}  // namespace tessum
