// The client commands of the real program, run as a person runs them.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "core/json/field.h"
#include "core/json/reader.h"
#include "core/json/writer.h"
#include "tests/desktop/clients/client_user.h"
#include "tests/desktop/loopback_server.h"
#include "tests/support/folder_contents.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

constexpr char kClaudeFile[] = TESSUM_CLAUDE_FILE;
constexpr char kCursorFile[] = ".cursor/mcp.json";
constexpr char kWindsurfFile[] = ".codeium/windsurf/mcp_config.json";
constexpr char kContinueFile[] = ".continue/mcpServers/tessum.json";
constexpr char kCataloguedContinueFile[] = ".continue/config.json";
constexpr char kHttpConfig[] =
    R"({"mcpServers":{"tessum":{"url":"http:\/\/localhost:7384\/mcp"}}})";

constexpr std::uint16_t kEndpointPort = 7384;

// The server that lies beside the program.
std::string serverPath() {
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

  // The row of the table that shows the file `name`, with single blanks between words; empty when
  // there is none.
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

////////////////////////////////////////////////////////////////////////////////////////////////
// install

TEST_F(ClientCommands, InstallRegistersTheServerBesideTheProgram) {
  const ClientRun run = user_.run({"install", "cursor"});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_EQ(run.output, "Registered with Cursor in " + user_.file(kCursorFile) + ".\n");
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(command(kCursorFile), serverPath());
}

TEST_F(ClientCommands, TheWrittenEntryStartsTheServer) {
  ASSERT_EQ(user_.run({"install", "--all"}).status, 0);
  for (const char* name : {kClaudeFile, kCursorFile, kWindsurfFile, kContinueFile}) {
    ChildProcess::Options options;
    options.environment = user_.environment();
    ChildProcess server(command(name), options);
    server.writeLine(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{}})");
    const auto answer = server.readLine();
    ASSERT_TRUE(answer.has_value()) << name;
    const json::Value document = json::parse(*answer);
    const json::Field result = json::Field(document).required("result");
    EXPECT_EQ(result.required("serverInfo").required("name").text(), "tessum") << name;
    EXPECT_EQ(server.finish(), kSuccess);
  }
}

TEST_F(ClientCommands, InstallAllRegistersEveryApplicationWhereItReads) {
  const ClientRun run = user_.run({"install", "--all"});
  EXPECT_EQ(run.status, 0);
  for (const char* name : {kClaudeFile, kCursorFile, kWindsurfFile, kContinueFile}) {
    EXPECT_EQ(command(name), serverPath()) << name;
    EXPECT_NE(run.output.find(user_.file(name)), std::string::npos) << run.output;
  }
  EXPECT_FALSE(fs::exists(user_.home() + "/" + kCataloguedContinueFile));
  EXPECT_NE(run.errors.find("Continue reads this file and not " + user_.home() + "/" +
                            kCataloguedContinueFile),
            std::string::npos)
      << run.errors;
  EXPECT_NE(run.errors.find("Claude Desktop writes its file anew while it runs"), std::string::npos)
      << run.errors;
}

TEST_F(ClientCommands, InstallTakesSeveralNamesInAnyCase) {
  EXPECT_EQ(user_.run({"install", "CURSOR", "claude desktop"}).status, 0);
  EXPECT_EQ(command(kCursorFile), serverPath());
  EXPECT_EQ(command(kClaudeFile), serverPath());
  EXPECT_FALSE(fs::exists(user_.home() + "/.codeium"));
}

TEST_F(ClientCommands, InstallWithHttpPointsAtTheEndpoint) {
  const ClientRun run = user_.run({"install", "--http", "Claude Desktop", "windsurf"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(config(kClaudeFile), kHttpConfig);
  EXPECT_EQ(config(kWindsurfFile), kHttpConfig);
  EXPECT_NE(run.errors.find("\"Tessum record --http\" must be running"), std::string::npos);
}

TEST_F(ClientCommands, InstallTakesTheFileOfAnyApplication) {
  const std::string file = user_.home() + "/other/deep/mcp.json";
  const ClientRun run = user_.run({"install", "--file", file});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "Registered in " + file + ".\n");
  EXPECT_EQ(command("other/deep/mcp.json"), serverPath());
}

TEST_F(ClientCommands, InstallKeepsWhatElseIsThere) {
  writeFile(user_.file(kCursorFile),
            R"({"n":[1.0,1e400],"mcpServers":{"other":{"command":"x"},"tessum":{"env":{}}}})");
  ASSERT_EQ(user_.run({"install", "cursor", "--http"}).status, 0);
  EXPECT_EQ(config(kCursorFile),
            R"({"mcpServers":{"other":{"command":"x"},)"
            R"("tessum":{"url":"http:\/\/localhost:7384\/mcp"}},"n":[1.0,1e400]})");
  EXPECT_EQ(namesIn(user_.file(".cursor")), std::vector<std::string>{"mcp.json"});
}

TEST_F(ClientCommands, InstallKeepsACopyOfAFileThatIsNoObject) {
  const std::map<std::string, std::string> contents{{"comments.json", "// mine\n{\"a\": 1}"},
                                                    {"commas.json", "{\"a\": 1,}"},
                                                    {"array.json", "[1]"},
                                                    {"damage.json", std::string("{\"a\0\xFF", 5)}};
  for (const auto& [name, content] : contents) {
    const std::string file = user_.file(name);
    writeFile(file, content);
    const ClientRun run = user_.run({"install", "--http", "--file", file});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.errors.find("a copy of it is " + file + ".before-tessum."), std::string::npos)
        << run.errors;
    EXPECT_EQ(readFile(file + ".before-tessum"), content);
    EXPECT_EQ(config(name.c_str()), kHttpConfig);
  }
}

TEST_F(ClientCommands, ACopyNeverReplacesAnother) {
  const std::string file = user_.file("mcp.json");
  for (const char* content : {"first", "second", "third"}) {
    writeFile(file, content);
    EXPECT_EQ(user_.run({"install", "--file", file}).status, 0);
  }
  EXPECT_EQ(readFile(file + ".before-tessum"), "first");
  EXPECT_EQ(readFile(file + ".before-tessum-2"), "second");
  EXPECT_EQ(readFile(file + ".before-tessum-3"), "third");
}

TEST_F(ClientCommands, AnEmptyFileNeedsNoCopy) {
  const std::string file = user_.file("folder/mcp.json");
  writeFile(file, "");
  const ClientRun run = user_.run({"install", "--http", "--file", file});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(config("folder/mcp.json"), kHttpConfig);
  EXPECT_EQ(namesIn(user_.file("folder")), std::vector<std::string>{"mcp.json"});
}

TEST_F(ClientCommands, AFileThatCannotBeReadStopsItAndTheOthersAreDone) {
  const std::string cursor = user_.file(kCursorFile);
  fs::create_symlink("mcp.json",
                     cursor);  // a circle: no one can read it, the administrator neither
  const ClientRun run = user_.run({"install", "--all"});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.errors.find("Cannot read " + cursor), std::string::npos) << run.errors;
  EXPECT_TRUE(fs::is_symlink(cursor));
  EXPECT_EQ(command(kWindsurfFile), serverPath());
}

TEST_F(ClientCommands, AFileWithoutPermissionStopsIt) {
  if (geteuid() == 0) GTEST_SKIP() << "the administrator may read everything";
  const std::string cursor = user_.file(kCursorFile);
  writeFile(cursor, R"({"a":1})");
  ASSERT_EQ(chmod(cursor.c_str(), 0), 0);
  for (const char* action : {"install", "uninstall"}) {
    const ClientRun run = user_.run({action, "cursor"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.errors.find(std::strerror(EACCES)), std::string::npos) << run.errors;
  }
  ASSERT_EQ(chmod(cursor.c_str(), 0600), 0);
  EXPECT_EQ(readFile(cursor), R"({"a":1})");
}

TEST_F(ClientCommands, WithoutAServerNothingIsWritten) {
  const std::string alone = user_.file("bin/Tessum");
  fs::copy_file(TESSUM_PROGRAM, alone);
  if (fs::exists("/Applications/Tessum.app/Contents/MacOS/TessumMCP")) GTEST_SKIP();
  const ClientRun run = user_.run({"install", "cursor"}, alone);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_NE(run.errors.find("there is no TessumMCP beside this program"), std::string::npos);
  EXPECT_FALSE(fs::exists(user_.home() + "/" + kCursorFile));
  EXPECT_EQ(user_.run({"install", "cursor", "--http"}, alone).status, 0);  // needs no server
}

////////////////////////////////////////////////////////////////////////////////////////////////
// uninstall

TEST_F(ClientCommands, UninstallRemovesTheEntryAlone) {
  writeFile(user_.file(kCursorFile), R"({"a":1.0,"mcpServers":{"other":{},"tessum":null}})");
  const ClientRun run = user_.run({"uninstall", "cursor"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "Removed from " + user_.file(kCursorFile) + ".\n");
  EXPECT_EQ(config(kCursorFile), R"({"a":1.0,"mcpServers":{"other":{}}})");
}

TEST_F(ClientCommands, UninstallLeavesAFileWithoutEntryUntouched) {
  writeFile(user_.file(kCursorFile), "{ \"a\" :1}");
  const ClientRun run = user_.run({"uninstall", "cursor", "windsurf"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "Not registered with Cursor.\nNot registered with Windsurf.\n");
  EXPECT_EQ(readFile(user_.file(kCursorFile)), "{ \"a\" :1}");
}

TEST_F(ClientCommands, UninstallLooksAtTheCataloguesPlaceToo) {
  ASSERT_EQ(user_.run({"install", "continue"}).status, 0);
  writeFile(user_.file(kCataloguedContinueFile), kHttpConfig);
  EXPECT_EQ(user_.run({"uninstall", "--all"}).status, 0);
  EXPECT_EQ(config(kContinueFile), R"({"mcpServers":{}})");
  EXPECT_EQ(config(kCataloguedContinueFile), R"({"mcpServers":{}})");
}

TEST_F(ClientCommands, UninstallLooksAtTheOtherPlaceWhenOneCannotBeRead) {
  fs::create_symlink("tessum.json", user_.file(kContinueFile));
  writeFile(user_.file(kCataloguedContinueFile), kHttpConfig);
  const ClientRun run = user_.run({"uninstall", "continue"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "Removed from " + user_.file(kCataloguedContinueFile) + ".\n");
  EXPECT_EQ(config(kCataloguedContinueFile), R"({"mcpServers":{}})");
}

TEST_F(ClientCommands, UninstallSaysWhenItCannotTell) {
  writeFile(user_.file(kCursorFile), "// mine\n{\"mcpServers\":{\"tessum\":{}}}");
  const ClientRun run = user_.run({"uninstall", "cursor"});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.errors.find("is not a JSON object. It was left as it is."), std::string::npos)
      << run.errors;
  EXPECT_EQ(readFile(user_.file(kCursorFile)), "// mine\n{\"mcpServers\":{\"tessum\":{}}}");
}

TEST_F(ClientCommands, UninstallTakesTheFileOfAnyApplication) {
  const std::string file = user_.file("mcp.json");
  ASSERT_EQ(user_.run({"install", "--file", file}).status, 0);
  EXPECT_EQ(user_.run({"uninstall", "--file", file}).status, 0);
  EXPECT_EQ(config("mcp.json"), R"({"mcpServers":{}})");
}

////////////////////////////////////////////////////////////////////////////////////////////////
// clients

TEST_F(ClientCommands, ClientsShowsWhereNothingIsRegistered) {
  EXPECT_EQ(row(kClaudeFile), "Claude Desktop no - -");
  EXPECT_EQ(row(kCursorFile), "Cursor no - -");
  EXPECT_EQ(row(kWindsurfFile), "Windsurf no - -");
  EXPECT_EQ(row(kContinueFile), "Continue no - -");
  EXPECT_EQ(row(kCataloguedContinueFile), "");
}

TEST_F(ClientCommands, ClientsListsTheApplicationsInTheCataloguesOrder) {
  const std::string output = user_.run({"clients"}).output;
  const auto at = [&](const char* name) { return output.find(name); };
  EXPECT_LT(at("Application"), at("Claude Desktop"));
  EXPECT_LT(at("Claude Desktop"), at("Cursor"));
  EXPECT_LT(at("Cursor"), at("Windsurf"));
  EXPECT_LT(at("Windsurf"), at("Continue"));
  EXPECT_EQ(output.find('\x1B'), std::string::npos);  // plain where it is no terminal
}

TEST_F(ClientCommands, ClientsTellsWhetherTheServerIsThere) {
  ASSERT_EQ(user_.run({"install", "cursor"}).status, 0);
  EXPECT_EQ(row(kCursorFile), "Cursor yes stdio yes");
  writeFile(user_.file(kCursorFile),
            R"({"mcpServers":{"tessum":{"command":"/nowhere/TessumMCP","args":[]}}})");
  EXPECT_EQ(row(kCursorFile), "Cursor yes stdio no: its program is missing");
  writeFile(user_.file(kCursorFile),
            R"({"mcpServers":{"tessum":{"command":")" + user_.home() + R"("}}})");
  EXPECT_EQ(row(kCursorFile), "Cursor yes stdio no: its program is missing");
  writeFile(user_.file(kCursorFile), R"({"mcpServers":{"tessum":{"command":"TessumMCP"}}})");
  EXPECT_EQ(row(kCursorFile), "Cursor yes stdio no: its program is not given by its full path");
}

TEST_F(ClientCommands, ClientsTellsWhetherTheEndpointAnswers) {
  writeFile(user_.file(kCursorFile), kHttpConfig);
  LoopbackServer server(kEndpointPort);
  if (!server.isBound()) GTEST_SKIP() << "the endpoint's port is taken";
  EXPECT_EQ(row(kCursorFile), "Cursor yes HTTP no: \"Tessum record --http\" is not running");
  server.answerWith(
      "HTTP/1.1 200 OK\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: 60\r\n\r\n"
      "Tessum MCP Server \u2013 POST /mcp with a JSON-RPC 2.0 request.");
  EXPECT_EQ(row(kCursorFile), "Cursor yes HTTP yes");
}

TEST_F(ClientCommands, ClientsTakesNoOtherServerForTheEndpoint) {
  writeFile(user_.file(kCursorFile), kHttpConfig);
  LoopbackServer server(kEndpointPort);
  if (!server.isBound()) GTEST_SKIP() << "the endpoint's port is taken";
  server.answerWith("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
  EXPECT_EQ(row(kCursorFile), "Cursor yes HTTP no: \"Tessum record --http\" is not running");
}

TEST_F(ClientCommands, ClientsTellsOfEntriesThatAreNotOurs) {
  writeFile(user_.file(kCursorFile), R"({"mcpServers":{"tessum":{"url":"http://example/mcp"}}})");
  EXPECT_EQ(row(kCursorFile), "Cursor yes HTTP no: its URL is not Tessum's");
  writeFile(user_.file(kCursorFile), R"({"mcpServers":{"tessum":null}})");
  EXPECT_EQ(row(kCursorFile), "Cursor yes unknown no: it names neither a program nor a URL");
}

TEST_F(ClientCommands, ClientsShowsAnEntryThatTheApplicationDoesNotRead) {
  writeFile(user_.file(kCataloguedContinueFile), kHttpConfig);
  EXPECT_EQ(row(kContinueFile), "Continue no - -");
  EXPECT_EQ(row(kCataloguedContinueFile),
            "Continue yes HTTP no: the application does not read this file");
}

TEST_F(ClientCommands, ClientsSaysWhichFilesItCannotMakeOut) {
  writeFile(user_.file(kCursorFile), "{,}");
  fs::create_symlink("mcp_config.json", user_.file(kWindsurfFile));
  EXPECT_EQ(row(kCursorFile), "Cursor no - -");
  EXPECT_EQ(row(kWindsurfFile), "Windsurf unknown - -");
  const std::string errors = user_.run({"clients"}).errors;
  EXPECT_NE(errors.find(user_.file(kCursorFile) + " is not a JSON object"), std::string::npos);
  EXPECT_NE(errors.find("Cannot read " + user_.file(kWindsurfFile)), std::string::npos);
}

////////////////////////////////////////////////////////////////////////////////////////////////
// The command line.

TEST_F(ClientCommands, AnUnknownNameIsAnErrorThatListsTheKnownOnes) {
  for (const char* action : {"install", "uninstall"}) {
    const ClientRun run = user_.run({action, "cursor", "zed"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "");
    EXPECT_NE(run.errors.find("\"zed\""), std::string::npos);
    EXPECT_NE(run.errors.find(R"("Claude Desktop", "Cursor", "Windsurf", "Continue")"),
              std::string::npos)
        << run.errors;
  }
  EXPECT_FALSE(fs::exists(user_.home() + "/" + kCursorFile));
}

TEST_F(ClientCommands, AWrongCommandLineHasItsOwnStatus) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"install"},
                                                    {"uninstall"},
                                                    {"install", "--all", "cursor"},
                                                    {"install", "--file"},
                                                    {"uninstall", "--http", "cursor"},
                                                    {"clients", "x"},
                                                    {"install", "continueApp"},
                                                    {"install", "Cursor "}}) {
    const ClientRun run = user_.run(arguments);
    EXPECT_EQ(run.status, 2) << arguments.front();
    EXPECT_NE(run.errors, "");
  }
  EXPECT_TRUE(fs::is_empty(user_.home()));
}

TEST_F(ClientCommands, EachHasHelpWithExamples) {
  for (const char* command : {"clients", "install", "uninstall"}) {
    const ClientRun run = user_.run({command, "--help"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.output.find("Example"), std::string::npos);
    EXPECT_NE(run.output.find(std::string("  Tessum ") + command), std::string::npos);
    EXPECT_EQ(run.errors, "");
  }
}

}  // namespace
}  // namespace tessum
