// What registering does to files around the text of one.

#include "desktop/clients/registration.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "desktop/clients/assistants.h"
#include "desktop/clients/edit/text_difference.h"
#include "tests/desktop/clients/registration_fixture.h"
#include "tests/support/folder_contents.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

class Registering : public RegistrationTest {
 protected:
  [[nodiscard]] RegistrationFile fileOf(const char* id) const {
    const auto assistant = assistantNamed(id, locations_);
    return {assistant.value().files.front(), assistant.value().format};
  }

  void install(const RegistrationFile& file) const {
    EXPECT_EQ(registerIn(file, {}, host_).outcome, Outcome::changed);
  }

  void uninstall(const RegistrationFile& file) const {
    EXPECT_EQ(unregisterFrom(file, {}, host_).outcome, Outcome::changed);
  }
};

TEST_F(Registering, GivesEachApplicationItsForm) {
  const std::string command = "\"command\": \"" + folder_.file("bin/TessumMCP") + "\"";
  for (const Assistant& assistant : knownAssistants(locations_)) {
    const RegistrationFile file{assistant.files.front(), assistant.format};
    install(file);
    const std::string text = readFile(file.path);
    const bool isToml = assistant.id == "codex";
    EXPECT_NE(text.find(isToml ? "[mcp_servers.tessum]\nargs = []\ncommand = " : command),
              std::string::npos)
        << text;
    EXPECT_EQ(text.find("\"type\": \"stdio\"") != std::string::npos, assistant.id == "vscode");
    EXPECT_EQ(text.find("\"env\": {}") != std::string::npos, assistant.id == "zed");
    EXPECT_EQ(registrationIn(file, host_).entry.value().problem, "");
    EXPECT_TRUE(isPresent(assistant, files_)) << assistant.name;
    uninstall(file);
    EXPECT_FALSE(isPresent(assistant, files_)) << assistant.name;
  }
  EXPECT_EQ(namesIn(folder_.path()), std::vector<std::string>{"bin"});
}

TEST_F(Registering, KnowsApplicationsByTheirFolders) {
  const auto claude = assistantNamed("CLAUDE code", locations_).value();
  EXPECT_FALSE(isPresent(claude, files_));
  fs::create_directory(folder_.file(".claude"));
  EXPECT_TRUE(isPresent(claude, files_));
  fs::remove(folder_.file(".claude"));
  writeFile(folder_.file(".claude.json"), "{}");
  EXPECT_TRUE(isPresent(claude, files_));
  EXPECT_FALSE(assistantNamed("claude", locations_));
}

TEST_F(Registering, KeepsLinksAndPermissions) {
  writeFile(folder_.file("real"), "{}\n");
  ASSERT_EQ(chmod(folder_.file("real").c_str(), 0644), 0);
  fs::create_symlink("real", file_);
  const RegistrationFile file{.path = file_};
  install(file);
  EXPECT_TRUE(fs::is_symlink(file_));
  uninstall(file);
  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_EQ(readFile(folder_.file("real")), "{}\n");
  EXPECT_EQ(fs::status(folder_.file("real")).permissions(), fs::perms(0644));
}

TEST_F(Registering, TakesAwayAFileThatItMadeBehindALink) {
  fs::create_symlink("missing", file_);
  const RegistrationFile file{.path = file_};
  install(file);
  EXPECT_TRUE(fs::exists(folder_.file("missing")));
  uninstall(file);
  EXPECT_FALSE(fs::exists(folder_.file("missing")));
  EXPECT_TRUE(fs::is_symlink(file_));
}

TEST_F(Registering, LeavesAFileAndFoldersThatHoldMoreByNow) {
  const RegistrationFile file = fileOf("vscode");
  install(file);
  writeFile(fs::path(file.path).parent_path().string() + "/settings.json", "{}");
  uninstall(file);
  EXPECT_EQ(namesIn(fs::path(file.path).parent_path().string()),
            std::vector<std::string>{"settings.json"});

  const RegistrationFile cursor = fileOf("cursor");
  install(cursor);
  std::string text = readFile(cursor.path);
  writeFile(cursor.path, text.insert(text.find('{') + 1, "\"mine\": 1,"));
  uninstall(cursor);
  EXPECT_EQ(readFile(cursor.path), "{\"mine\": 1\n}\n");
}

TEST_F(Registering, RecordsAreForTheUserAlone) {
  install({.path = file_});
  EXPECT_EQ(fs::status(records_).permissions(), fs::perms(0600));
  writeFile(records_, "no records");
  uninstall({.path = file_});
  EXPECT_EQ(readFile(file_), "{\n  \"mcpServers\": {}\n}\n") << "nothing is known any more";
}

TEST_F(Registering, ADryRunLeavesNoTrace) {
  const RegistrationFile file = fileOf("zed");
  const RegistrationChange adding = registerIn(file, {.isDryRun = true}, host_);
  EXPECT_TRUE(adding.difference.starts_with("--- /dev/null\n+++ " + file.path + "\n@@ -0,0 +1,"))
      << adding.difference;
  EXPECT_EQ(namesIn(folder_.path()), std::vector<std::string>{"bin"});
  install(file);
  const std::string text = readFile(file.path);
  const RegistrationChange removing = unregisterFrom(file, {.isDryRun = true}, host_);
  EXPECT_NE(removing.difference.find("+++ /dev/null\n"), std::string::npos) << removing.difference;
  EXPECT_EQ(readFile(file.path), text);
}

TEST_F(Registering, NeedsAServer) {
  fs::remove(folder_.file("bin/TessumMCP"));
  if (fs::exists("/Applications/Tessum.app/Contents/MacOS/TessumMCP")) GTEST_SKIP();
  EXPECT_THROW(static_cast<void>(registerIn({.path = file_}, {}, host_)), std::runtime_error);
  EXPECT_FALSE(fs::exists(file_));
}

TEST(TextDifference, ShowsTheLinesAroundAChange) {
  EXPECT_EQ(textDifference("f", "1\n2\n3\n4\n5\n6\n7\n8\n", "1\n2\n3\n4\nx\n6\n7\n8\n"),
            "--- f\n+++ f\n@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+x\n 6\n 7\n 8\n");
  EXPECT_EQ(textDifference("f", "a", "a\n"),
            "--- f\n+++ f\n@@ -1,1 +1,1 @@\n-a\n\\ No newline at end of file\n+a\n");
  EXPECT_EQ(textDifference("f", "a", "a"), "");
}

}  // namespace
}  // namespace tessum
