// uninstall, as a person runs it with the real program.

#include "tests/desktop/clients/client_commands_fixture.h"
#include "tests/support/folder_contents.h"

namespace tessum {
namespace {

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
  EXPECT_EQ(namesIn(user_.home() + "/.continue"), std::vector<std::string>{"config.json"});
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
  writeFile(user_.file(kCursorFile), "{\"mcpServers\":{\"tessum\":{}}");
  const ClientRun run = user_.run({"uninstall", "cursor"});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.errors.find("cannot be edited safely: it is not JSON"), std::string::npos)
      << run.errors;
  EXPECT_EQ(readFile(user_.file(kCursorFile)), "{\"mcpServers\":{\"tessum\":{}}");
}

TEST_F(ClientCommands, UninstallTakesTheFileOfAnyApplication) {
  const std::string file = user_.file("mcp.json");
  writeFile(file, "{ \"a\":1 }");
  ASSERT_EQ(user_.run({"install", "--file", file}).status, 0);
  EXPECT_EQ(user_.run({"uninstall", "--file", file}).status, 0);
  EXPECT_EQ(readFile(file), "{ \"a\":1 }");
  EXPECT_EQ(user_.run({"uninstall", "--file", file}).output, "Not registered with " + file + ".\n");
}

TEST_F(ClientCommands, UninstallAllKnowsTheFilesThatInstallWasGiven) {
  const std::string file = user_.home() + "/other/mcp.json";
  ASSERT_EQ(user_.run({"install", "--file", file}).status, 0);
  EXPECT_EQ(user_.run({"uninstall", "--all"}).output, "Removed from " + file + ".\n");
  EXPECT_EQ(user_.run({"uninstall", "--all"}).output, "Not registered with any application.\n");
  EXPECT_EQ(namesIn(user_.home()), std::vector<std::string>{});
}

TEST_F(ClientCommands, UninstallTakesAwayWhatInstallMade) {
  ASSERT_EQ(user_.run({"install", "cursor", "zed", "codex", "Continue"}).status, 0);
  EXPECT_EQ(user_.run({"install", "cursor", "zed", "codex", "Continue"}).output.find("Already"),
            0u);
  const ClientRun run = user_.run({"uninstall", "--all"});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_EQ(namesIn(user_.home()), std::vector<std::string>{});
}

TEST_F(ClientCommands, UninstallingInAFileWithARewrittenRestTakesTheContainerToo) {
  writeFile(user_.file(".claude.json"), "{\n  \"a\": 1\n}");
  ASSERT_EQ(user_.run({"install", "--http", "claude-code"}).status, 0);
  // As an application writes its own file, with its own member behind ours.
  writeFile(user_.file(".claude.json"),
            R"({"a":2,"mcpServers":{"tessum":{"url":"x","type":"http"}},"b":3})");
  ASSERT_EQ(user_.run({"uninstall", "claude-code"}).status, 0);
  EXPECT_EQ(readFile(user_.file(".claude.json")), R"({"a":2,"b":3})");
}

TEST_F(ClientCommands, AnEntryThatIsRightStaysAsItIs) {
  const std::string file = user_.file(kCursorFile);
  const std::string content = "{\"mcpServers\": {\"tessum\": {\"command\": \"" + serverPath() +
                              "\", \"env\": {\"A\": \"b\"}, /* none */ \"args\": [],},},}";
  writeFile(file, content);
  fs::last_write_time(file, fs::file_time_type());
  EXPECT_EQ(user_.run({"install", "cursor"}).output,
            "Already registered with Cursor in " + file + ".\n");
  EXPECT_EQ(readFile(file), content);
  EXPECT_EQ(fs::last_write_time(file), fs::file_time_type());
}

TEST_F(ClientCommands, AnOlderEntryIsReplacedInItsPlaceAndGoesAsANewOne) {
  const std::string file = user_.file(kCursorFile);
  const std::string before = "{\n\t\"a\": 1, // one\n\t\"z\": {}\n}\n";
  writeFile(file, before);
  ASSERT_EQ(user_.run({"install", "--http", "cursor"}).status, 0);
  const std::string http = readFile(file);
  ASSERT_EQ(user_.run({"install", "cursor"}).status, 0);
  EXPECT_NE(readFile(file), http);
  ASSERT_EQ(user_.run({"uninstall", "cursor"}).status, 0);
  EXPECT_EQ(readFile(file), before);
}

}  // namespace
}  // namespace tessum
