// What setup tells the assistants, and what its undoing leaves of it.

#include "tests/desktop/setup/setup_fixture.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

TEST_F(Setup, RegistersWithTheAssistantsThatAreHere) {
  openTerminal();
  EXPECT_TRUE(contains(run({"status"}).output, "Clients    none was found"));
  fs::create_directories(desktop.home().file(".cursor"));
  EXPECT_TRUE(contains(run({"status"}).output, "Clients    Cursor does not know of Tessum"));
  EXPECT_TRUE(contains(run({"setup", "--dry-run"}).output, "+    \"tessum\": {"));
  const Outcome outcome = run({"setup", "--yes"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, "- tell Cursor of Tessum\n      " +
                                           desktop.home().file(".cursor/mcp.json") + "\n"));
  EXPECT_TRUE(contains(outcome.output, "Cursor knows of Tessum; restart those that are running"));
  EXPECT_FALSE(fs::exists(desktop.home().file(".codeium"))) << "an assistant that is not here";
  EXPECT_TRUE(contains(run({"doctor"}).output, "ok   Cursor knows of Tessum."));
}

// An entry that the user chose is not setup's to take.
TEST_F(Setup, LeavesARegistrationThatWasThereBefore) {
  openTerminal();
  ASSERT_EQ(run({"install", "cursor", "--http"}).status, 0);
  const std::string file = readFile(desktop.home().file(".cursor/mcp.json"));
  ASSERT_EQ(run({"setup", "--yes"}).status, 0);
  EXPECT_EQ(readFile(desktop.home().file(".cursor/mcp.json")), file);
  ASSERT_EQ(run({"setup", "--undo", "--yes"}).status, 0);
  EXPECT_EQ(readFile(desktop.home().file(".cursor/mcp.json")), file);
}

// An entry whose program is gone, in a form and a place of the user's own.
class SetupReplacing : public Setup, public testing::WithParamInterface<const char*> {};

TEST_P(SetupReplacing, PutsTheOldEntryBack) {
  openTerminal();
  const std::string path = desktop.home().file(GetParam());
  const std::string old = path.ends_with(".toml")
                              ? "[mcp_servers.tessum.env]\nA = 'b' # "
                                "mine\n\n[x]\n[mcp_servers.tessum]\ncommand = '/gone'\n"
                              : "{\"mcpServers\": {\"tessum\": {\"command\": \"/gone\",   "
                                "\"args\": [\"-v\"]}}, // mine\n}";
  fs::create_directory(fs::path(path).parent_path());
  writeFile(path, old);
  ASSERT_EQ(run({"setup", "--yes"}).status, 0);
  EXPECT_TRUE(contains(readFile(path), "TessumMCP"));
  ASSERT_EQ(run({"setup", "--yes"}).status, 0);
  const Outcome planned = run({"setup", "--undo", "--dry-run"});
  EXPECT_TRUE(contains(planned.output, "- put back the entry that "));
  EXPECT_TRUE(contains(planned.output, "/gone"));
  const Outcome outcome = run({"setup", "--undo", "--yes"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(readFile(path), old);
}

INSTANTIATE_TEST_SUITE_P(Setup, SetupReplacing,
                         testing::Values(".cursor/mcp.json", ".codex/config.toml"));

TEST_F(Setup, RemovesOnlyItsEntryFromAFileThatHasChangedSinceAnEntryWasReplaced) {
  openTerminal();
  const std::string path = desktop.home().file(".cursor/mcp.json");
  fs::create_directory(desktop.home().file(".cursor"));
  writeFile(path, R"({"mcpServers": {"tessum": {"command": "/gone"}}})");
  ASSERT_EQ(run({"setup", "--yes"}).status, 0);
  writeFile(path, readFile(path) + " // mine\n");
  EXPECT_TRUE(
      contains(run({"setup", "--undo", "--dry-run"}).output, "- remove Tessum from Cursor"));
  ASSERT_EQ(run({"setup", "--undo", "--yes"}).status, 0);
  EXPECT_EQ(readFile(path), "{\"mcpServers\": {}} // mine\n");
}

TEST_F(Setup, SaysWhatToPasteWhereAFileCannotBeEditedAndDoesTheRest) {
  openTerminal();
  const std::string path = desktop.home().file(".cursor/mcp.json");
  fs::create_directory(desktop.home().file(".cursor"));
  writeFile(path, "{broken");
  const auto before = home();
  const std::string problem = path + " cannot be edited safely: it is not JSON. Add these lines";
  EXPECT_TRUE(contains(run({"setup", "--dry-run"}).output, problem));
  const Outcome outcome = run({"setup", "--yes"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(contains(outcome.errors, problem));
  EXPECT_TRUE(contains(outcome.errors, "\n\"mcpServers\": {\n  \"tessum\": {\n"));
  EXPECT_TRUE(isRecording());
  const Outcome undone = run({"setup", "--undo", "--yes"});
  EXPECT_EQ(undone.status, 0) << undone.errors;
  EXPECT_EQ(home(), before);
}

}  // namespace
}  // namespace tessum
