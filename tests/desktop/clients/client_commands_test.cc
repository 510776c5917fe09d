// install and its command line, as a person runs it with the real program.

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <map>

#include "tests/desktop/clients/client_commands_fixture.h"
#include "tests/desktop/user.h"
#include "tests/support/folder_contents.h"

namespace tessum {
namespace {

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
  makeFolders();
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

TEST_F(ClientCommands, InstallAllRegistersTheApplicationsThatAreHere) {
  fs::create_directories(user_.home() + "/.gemini");
  ASSERT_EQ(user_.run({"install", "--all"}).status, 0);
  EXPECT_EQ(command(".gemini/settings.json"), serverPath());
  EXPECT_EQ(namesIn(user_.home()), (std::vector<std::string>{".gemini", ".local"}));
}

TEST_F(ClientCommands, InstallAllSaysWhenNoneIsHere) {
  const ClientRun run = user_.run({"install", "--all"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "No application that \"clients\" names is on this computer.\n");
}

TEST_F(ClientCommands, InstallAllRegistersEveryApplicationWhereItReads) {
  makeFolders();
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
  EXPECT_NE(run.errors.find("Claude Desktop rewrites its file while it runs"), std::string::npos)
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
  EXPECT_NE(run.errors.find("only while \"Tessum record --http\" is running"), std::string::npos);
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

TEST_F(ClientCommands, InstallRefusesWhatItCannotEditSafelyAndShowsTheLines) {
  for (const std::string content :
       {"[1]", "{\"a\": 1", "{\"mcpServers\": []}", "{\"mcpServers\": {}, \"mcpServers\": {}}",
        "{\"mcpServers\": {\"tessum\": 1, \"tessum\": 2}}", "{,}", "{\"a\": 1,,}", "/* {}",
        "{\"a\": \"\xFF\"}", "{} {}"}) {
    const std::string file = user_.file("mcp.json");
    writeFile(file, content);
    const ClientRun run = user_.run({"install", "--http", "--file", file});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_NE(run.errors.find(file + " cannot be edited safely: "), std::string::npos)
        << run.errors;
    EXPECT_NE(run.errors.find("\"tessum\": {\n"), std::string::npos) << run.errors;
    EXPECT_NE(run.errors.find("--replace"), std::string::npos) << run.errors;
    EXPECT_EQ(readFile(file), content);
  }
}

TEST_F(ClientCommands, ReplaceKeepsACopyOfAFileThatIsNoPlainObject) {
  const std::map<std::string, std::string> contents{{"comments.json", "// mine\n{\"a\": 1}"},
                                                    {"commas.json", "{\"a\": 1,}"},
                                                    {"array.json", "[1]"},
                                                    {"damage.json", std::string("{\"a\0\xFF", 5)}};
  for (const auto& [name, content] : contents) {
    const std::string file = user_.file(name);
    writeFile(file, content);
    const ClientRun run = user_.run({"install", "--http", "--replace", "--file", file});
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
    EXPECT_EQ(user_.run({"install", "--replace", "--file", file}).status, 0);
  }
  EXPECT_EQ(readFile(file + ".before-tessum"), "first");
  EXPECT_EQ(readFile(file + ".before-tessum-2"), "second");
  EXPECT_EQ(readFile(file + ".before-tessum-3"), "third");
}

TEST_F(ClientCommands, ADryRunShowsTheDifferenceAndChangesNothing) {
  const std::string file = user_.file(kCursorFile);
  writeFile(file, "{\n  // mine\n  \"a\": 1,\n}\n");
  const ClientRun run = user_.run({"install", "--http", "--dry-run", "cursor"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "--- " + file + "\n+++ " + file +
                            "\n@@ -1,4 +1,9 @@\n {\n   // mine\n   \"a\": 1,\n"
                            "+  \"mcpServers\": {\n+    \"tessum\": {\n"
                            "+      \"url\": \"http://localhost:7384/mcp\"\n+    }\n+  },\n }\n");
  EXPECT_EQ(readFile(file), "{\n  // mine\n  \"a\": 1,\n}\n");
  EXPECT_EQ(namesIn(user_.home()), std::vector<std::string>{".cursor"});
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
                     cursor);  // a loop: nobody can read it, not even root
  makeFolders();
  const ClientRun run = user_.run({"install", "--all"});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.errors.find("Cannot read " + cursor), std::string::npos) << run.errors;
  EXPECT_TRUE(fs::is_symlink(cursor));
  EXPECT_EQ(command(kWindsurfFile), serverPath());
}

TEST_F(ClientCommands, AFileWithoutPermissionStopsIt) {
  const std::string cursor = user_.file(kCursorFile);
  writeFile(cursor, R"({"a":1})");
  ASSERT_EQ(chmod(cursor.c_str(), 0), 0);
  for (const char* action : {"install", "uninstall"}) {
    const ClientRun run = user_.run({action, "cursor"}, TESSUM_PROGRAM, dropPowers);
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
// The command line.

TEST_F(ClientCommands, AnUnknownNameIsAnErrorThatListsTheKnownOnes) {
  for (const char* action : {"install", "uninstall"}) {
    const ClientRun run = user_.run({action, "cursor", "notepad"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "");
    EXPECT_NE(run.errors.find("\"notepad\""), std::string::npos);
    EXPECT_NE(
        run.errors.find(
            R"("Claude Desktop", "Cursor", "Windsurf", "Continue", "Claude Code", "VS Code")"),
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
