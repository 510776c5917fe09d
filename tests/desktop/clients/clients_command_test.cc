// clients, as a person runs it with the real program.

#include "tests/desktop/clients/client_commands_fixture.h"
#include "tests/desktop/loopback_server.h"

namespace tessum {
namespace {

TEST_F(ClientCommands, ClientsShowsWhereNothingIsRegistered) {
  makeFolders();
  EXPECT_EQ(row(kClaudeFile), "Claude Desktop yes no - -");
  EXPECT_EQ(row(kCursorFile), "Cursor yes no - -");
  EXPECT_EQ(row(kWindsurfFile), "Windsurf yes no - -");
  EXPECT_EQ(row(kContinueFile), "Continue yes no - -");
  EXPECT_EQ(row(".claude.json"), "Claude Code no no - -");
  EXPECT_EQ(row(kCataloguedContinueFile), "");
}

TEST_F(ClientCommands, ClientsListsTheApplicationsInTheCataloguesOrder) {
  const std::string output = user_.run({"clients"}).output;
  const auto at = [&](const char* name) { return output.find(name); };
  EXPECT_LT(at("Application"), at("Claude Desktop"));
  EXPECT_LT(at("Claude Desktop"), at("Cursor"));
  EXPECT_LT(at("Cursor"), at("Windsurf"));
  EXPECT_LT(at("Windsurf"), at("Continue"));
  EXPECT_EQ(output.find('\x1B'), std::string::npos);  // no colour without a terminal
}

TEST_F(ClientCommands, ClientsTellsWhetherTheServerIsThere) {
  ASSERT_EQ(user_.run({"install", "cursor"}).status, 0);
  EXPECT_EQ(row(kCursorFile), "Cursor yes yes stdio yes");
  writeFile(user_.file(kCursorFile),
            R"({"mcpServers":{"tessum":{"command":"/nowhere/TessumMCP","args":[]}}})");
  EXPECT_EQ(row(kCursorFile), "Cursor yes yes stdio no: its program is missing");
  writeFile(user_.file(kCursorFile),
            R"({"mcpServers":{"tessum":{"command":")" + user_.home() + R"("}}})");
  EXPECT_EQ(row(kCursorFile), "Cursor yes yes stdio no: its program is missing");
  writeFile(user_.file(kCursorFile), R"({"mcpServers":{"tessum":{"command":"TessumMCP"}}})");
  EXPECT_EQ(row(kCursorFile), "Cursor yes yes stdio no: its program is not given by its full path");
}

TEST_F(ClientCommands, ClientsTellsWhetherTheEndpointAnswers) {
  writeFile(user_.file(kCursorFile), kHttpConfig);
  LoopbackServer server(kEndpointPort);
  if (!server.isBound()) GTEST_SKIP() << "the endpoint's port is taken";
  EXPECT_EQ(row(kCursorFile), "Cursor yes yes HTTP no: \"Tessum record --http\" is not running");
  server.answerWith(
      "HTTP/1.1 200 OK\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: 60\r\n\r\n"
      "Tessum MCP Server \u2013 POST /mcp with a JSON-RPC 2.0 request.");
  EXPECT_EQ(row(kCursorFile), "Cursor yes yes HTTP yes");
}

TEST_F(ClientCommands, ClientsTakesNoOtherServerForTheEndpoint) {
  writeFile(user_.file(kCursorFile), kHttpConfig);
  LoopbackServer server(kEndpointPort);
  if (!server.isBound()) GTEST_SKIP() << "the endpoint's port is taken";
  server.answerWith("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
  EXPECT_EQ(row(kCursorFile), "Cursor yes yes HTTP no: \"Tessum record --http\" is not running");
}

TEST_F(ClientCommands, ClientsTellsOfEntriesThatAreNotOurs) {
  writeFile(user_.file(kCursorFile), R"({"mcpServers":{"tessum":{"url":"http://example/mcp"}}})");
  EXPECT_EQ(row(kCursorFile), "Cursor yes yes HTTP no: its URL is not Tessum's");
  writeFile(user_.file(kCursorFile), R"({"mcpServers":{"tessum":null}})");
  EXPECT_EQ(row(kCursorFile), "Cursor yes yes unknown no: it names neither a program nor a URL");
}

TEST_F(ClientCommands, ClientsShowsAnEntryThatTheApplicationDoesNotRead) {
  writeFile(user_.file(kCataloguedContinueFile), kHttpConfig);
  EXPECT_EQ(row(kContinueFile), "Continue yes no - -");
  EXPECT_EQ(row(kCataloguedContinueFile),
            "Continue yes yes HTTP no: the application does not read this file");
}

TEST_F(ClientCommands, ClientsSaysWhichFilesItCannotMakeOut) {
  writeFile(user_.file(kCursorFile), "{,}");
  fs::create_symlink("mcp_config.json", user_.file(kWindsurfFile));
  EXPECT_EQ(row(kCursorFile), "Cursor yes unknown - -");
  EXPECT_EQ(row(kWindsurfFile), "Windsurf yes unknown - -");
  const std::string errors = user_.run({"clients"}).errors;
  EXPECT_NE(errors.find(user_.file(kCursorFile) + ": it is not JSON."), std::string::npos);
  EXPECT_NE(errors.find("Cannot read " + user_.file(kWindsurfFile)), std::string::npos);
}

}  // namespace
}  // namespace tessum
