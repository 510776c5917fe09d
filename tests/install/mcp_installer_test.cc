#include "core/install/mcp_installer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "core/json/field.h"
#include "core/json/reader.h"
#include "core/json/writer.h"
#include "tests/support/fakes/fake_locations.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

constexpr char kURL[] = "http://localhost:7384/mcp";
constexpr char kURLEntry[] = R"({"url":"http:\/\/localhost:7384\/mcp"})";
constexpr char kUsualBinary[] = "/Applications/Tessum.app/Contents/MacOS/TessumMCP";

MCPInstaller::Object objectOf(std::string_view text) {
  return *json::parse(text).object();
}

std::string textOf(MCPInstaller::Object object) {
  return json::compact(std::move(object));
}

class MCPInstallerTest : public testing::Test {
 protected:
  MCPInstallerTest() { locations_.home = folder_.path(); }

  // The file at path_ without its white space.
  [[nodiscard]] std::string config() const { return json::compact(json::parse(readFile(path_))); }

  // The command of the entry in that file.
  [[nodiscard]] std::string command() const {
    const json::Value document = json::parse(readFile(path_));
    const json::Field servers = json::Field(document).required("mcpServers");
    return servers.required("tessum").required("command").text();
  }

  const TemporaryFolder folder_;
  const std::string path_ = folder_.file("mcp.json");
  const SystemFiles files_{};
  FakeLocations locations_;
  const MCPInstaller installer_{kURL, files_, locations_};
};

////////////////////////////////////////////////////////////////////////////////////////////////
// The path of the stdio server.

TEST_F(MCPInstallerTest, TheServerBesideTheRunningProgramIsRegistered) {
  writeFile(folder_.file("TessumMCP"), "");
  locations_.executable = folder_.file("Tessum");
  EXPECT_EQ(installer_.stdioBinaryPath(), folder_.file("TessumMCP"));
}

TEST_F(MCPInstallerTest, TheUsualServerIsRegisteredWhereNoneIsBesideTheProgram) {
  locations_.executable = folder_.file("Tessum");
  EXPECT_EQ(installer_.stdioBinaryPath(), kUsualBinary);
}

TEST_F(MCPInstallerTest, TheUsualServerIsRegisteredWhereTheProgramIsUnknown) {
  EXPECT_EQ(installer_.stdioBinaryPath(), kUsualBinary);
}

TEST_F(MCPInstallerTest, TheServerIsLookedForAtEachInstallation) {
  locations_.executable = folder_.file("Tessum");
  installer_.installToPath(path_, true);
  EXPECT_EQ(command(), kUsualBinary);
  writeFile(folder_.file("TessumMCP"), "");
  installer_.installToPath(path_, true);
  EXPECT_EQ(command(), folder_.file("TessumMCP"));
}

TEST_F(MCPInstallerTest, APathThatJsonCannotSayIsAFailureAndNothingIsWritten) {
  const std::string odd = folder_.file("caf\xE9");
  fs::create_directory(odd);
  writeFile(odd + "/TessumMCP", "");
  locations_.executable = odd + "/Tessum";
  EXPECT_THROW(installer_.installToPath(path_, true), std::system_error);
  EXPECT_FALSE(files_.exists(path_));
}

////////////////////////////////////////////////////////////////////////////////////////////////
// Whether the entry is there.

class HasTessumEntry : public testing::TestWithParam<std::pair<const char*, bool>> {};

TEST_P(HasTessumEntry, LooksForTheKeyInTheObjectOfServers) {
  const auto& [text, isInstalled] = GetParam();
  EXPECT_EQ(MCPInstaller::hasTessumEntry(objectOf(text)), isInstalled) << text;
}

INSTANTIATE_TEST_SUITE_P(
    Configs, HasTessumEntry,
    testing::Values(std::pair(R"({})", false), std::pair(R"({"tessum":{}})", false),
                    std::pair(R"({"mcpServers":{}})", false),
                    std::pair(R"({"mcpServers":{"tessum":{"url":"x"}}})", true),
                    std::pair(R"({"mcpServers":{"tessum":null}})", true),
                    std::pair(R"({"mcpServers":{"tessum":7}})", true),
                    std::pair(R"({"mcpServers":{"Tessum":{}}})", false),
                    std::pair(R"({"mcpservers":{"tessum":{}}})", false),
                    std::pair(R"({"mcpServers":["tessum"]})", false),
                    std::pair(R"({"mcpServers":"tessum"})", false),
                    std::pair(R"({"mcpServers":1})", false),
                    std::pair(R"({"mcpServers":null})", false),
                    std::pair(R"({"mcpServers":{"tessum":{}},"mcpServers":{}})", false)));

TEST_F(MCPInstallerTest, NothingIsInstalledInAFileThatIsNoObject) {
  EXPECT_FALSE(installer_.isInstalledAtPath(path_));
  for (const char* content : {"", "no JSON", R"(["mcpServers"])", "null", "7",
                              R"({"mcpServers":{"tessum":{}}} trailing)"}) {
    writeFile(path_, content);
    EXPECT_FALSE(installer_.isInstalledAtPath(path_)) << content;
  }
  EXPECT_FALSE(installer_.isInstalledAtPath(folder_.path()));
  EXPECT_FALSE(installer_.isInstalledAtPath(""));
}

TEST_F(MCPInstallerTest, TheFileOfAnApplicationIsLookedAt) {
  EXPECT_FALSE(installer_.isInstalled(MCPClient::cursor));
  fs::create_directory(folder_.file(".cursor"));
  writeFile(folder_.file(".cursor/mcp.json"), R"({"mcpServers":{"tessum":null}})");
  EXPECT_TRUE(installer_.isInstalled(MCPClient::cursor));
  EXPECT_FALSE(installer_.isInstalled(MCPClient::windsurf));
}

////////////////////////////////////////////////////////////////////////////////////////////////
// Installing.

TEST_F(MCPInstallerTest, AMissingFileIsCreatedWithItsFolders) {
  const std::string path = folder_.file("a/b/mcp.json");
  installer_.installToPath(path, false);
  EXPECT_EQ(readFile(path),
            "{\n"
            "  \"mcpServers\": {\n"
            "    \"tessum\": {\n"
            "      \"url\": \"http:\\/\\/localhost:7384\\/mcp\"\n"
            "    }\n"
            "  }\n"
            "}");
  EXPECT_TRUE(installer_.isInstalledAtPath(path));
}

TEST_F(MCPInstallerTest, ClaudeDesktopGetsTheCommand) {
  installer_.install(MCPClient::claudeDesktop);
  EXPECT_EQ(readFile(MCPClient(MCPClient::claudeDesktop).configPath(locations_)),
            "{\n"
            "  \"mcpServers\": {\n"
            "    \"tessum\": {\n"
            "      \"args\": [],\n"
            "      \"command\": \"\\/Applications\\/Tessum.app\\/Contents\\/MacOS\\/TessumMCP\"\n"
            "    }\n"
            "  }\n"
            "}");
}

TEST_F(MCPInstallerTest, TheOtherApplicationsGetTheURL) {
  for (const MCPClient client : {MCPClient::cursor, MCPClient::windsurf, MCPClient::continueApp}) {
    installer_.install(client);
    EXPECT_EQ(json::compact(json::parse(readFile(client.configPath(locations_)))),
              std::string(R"({"mcpServers":{"tessum":)") + kURLEntry + "}}");
    EXPECT_TRUE(installer_.isInstalled(client));
  }
}

TEST_F(MCPInstallerTest, TheURLIsTheOneGivenAtConstruction) {
  const MCPInstaller other("http://localhost:1/mcp?é", files_, locations_);
  EXPECT_EQ(other.serverURL(), "http://localhost:1/mcp?é");
  other.installToPath(path_, false);
  EXPECT_EQ(config(), R"({"mcpServers":{"tessum":{"url":"http:\/\/localhost:1\/mcp?é"}}})");
}

TEST_F(MCPInstallerTest, OtherServersAndOtherKeysAreKept) {
  writeFile(path_, R"({"theme":"dark","mcpServers":{"other":{"command":"x"}}})");
  installer_.installToPath(path_, false);
  EXPECT_EQ(config(), std::string(R"({"mcpServers":{"other":{"command":"x"},"tessum":)") +
                          kURLEntry + R"(},"theme":"dark"})");
}

TEST_F(MCPInstallerTest, EveryValueKeepsItsText) {
  const std::string other =
      R"("a":[1.0,0.1000,1e400,-0,1E+2,123456789012345678901234567890,null,true,"\/\u0000é😀"])";
  writeFile(path_, "\xEF\xBB\xBF{" + other + "}");
  installer_.installToPath(path_, false);
  EXPECT_EQ(config(), "{" + other + R"(,"mcpServers":{"tessum":)" + kURLEntry + "}}");
}

TEST_F(MCPInstallerTest, DeepNestingIsKeptUpToTheReadersLimit) {
  const auto nested = [](std::size_t levels) {
    return std::string(levels, '[') + std::string(levels, ']');
  };
  writeFile(path_, R"({"deep":)" + nested(511) + "}");
  installer_.installToPath(path_, false);
  EXPECT_TRUE(config().starts_with(R"({"deep":)" + nested(511) + ","));
}

TEST_F(MCPInstallerTest, OfAKeyThatComesTwiceTheLastIsKept) {
  writeFile(path_, R"({"a":1,"mcpServers":{"x":1},"a":2,"mcpServers":{"y":1}})");
  installer_.installToPath(path_, false);
  EXPECT_EQ(config(), std::string(R"({"a":2,"mcpServers":{"tessum":)") + kURLEntry + R"(,"y":1}})");
}

TEST_F(MCPInstallerTest, AnOlderEntryIsReplacedWhole) {
  for (const char* entry : {R"({"command":"old","args":["-v"],"env":{"A":"b"}})", "null", "[1]"}) {
    writeFile(path_, std::string(R"({"mcpServers":{"tessum":)") + entry + "}}");
    installer_.installToPath(path_, false);
    EXPECT_EQ(config(), std::string(R"({"mcpServers":{"tessum":)") + kURLEntry + "}}");
  }
}

TEST_F(MCPInstallerTest, TheFormCanBeChanged) {
  installer_.installToPath(path_, true);
  installer_.installToPath(path_, false);
  EXPECT_EQ(config(), std::string(R"({"mcpServers":{"tessum":)") + kURLEntry + "}}");
  installer_.installToPath(path_, true);
  EXPECT_EQ(config(), textOf(installer_.setTessumEntry({}, true)));
}

TEST_F(MCPInstallerTest, ServersThatAreNoObjectAreReplaced) {
  for (const char* servers : {R"(["tessum"])", "\"text\"", "7", "null"}) {
    writeFile(path_, std::string(R"({"a":1,"mcpServers":)") + servers + "}");
    installer_.installToPath(path_, false);
    EXPECT_EQ(config(), std::string(R"({"a":1,"mcpServers":{"tessum":)") + kURLEntry + "}}");
  }
}

TEST_F(MCPInstallerTest, AFileThatIsNoObjectIsReplacedByTheEntryAlone) {
  for (const char* content : {"", " \n", "no JSON", "[1,2]", "null", "\"text\"", "{\"a\":1,}",
                              "// note\n{\"a\":1}", "{\"a\":1} {\"b\":2}", "{\"a\":\"\xFF\"}"}) {
    writeFile(path_, content);
    installer_.installToPath(path_, false);
    EXPECT_EQ(config(), std::string(R"({"mcpServers":{"tessum":)") + kURLEntry + "}}") << content;
  }
}

TEST_F(MCPInstallerTest, InstallingTwiceChangesNothing) {
  writeFile(path_, R"({"theme":"dark","mcpServers":{"other":{"command":"x"}},"n":1.0})");
  installer_.installToPath(path_, true);
  const std::string once = readFile(path_);
  installer_.installToPath(path_, true);
  EXPECT_EQ(readFile(path_), once);
}

TEST_F(MCPInstallerTest, AFolderThatCannotBeMadeIsAFailure) {
  writeFile(path_, "a file, not a folder");
  EXPECT_THROW(installer_.installToPath(path_ + "/below/mcp.json", false), std::system_error);
  EXPECT_EQ(readFile(path_), "a file, not a folder");
}

TEST_F(MCPInstallerTest, APathThatIsAFolderIsAFailure) {
  fs::create_directory(path_);
  EXPECT_THROW(installer_.installToPath(path_, false), std::system_error);
  EXPECT_TRUE(fs::is_empty(path_));
}

TEST_F(MCPInstallerTest, ARelativePathStartsAtTheCurrentFolder) {
  const auto before = fs::current_path();
  fs::current_path(folder_.path());
  installer_.installToPath("mcp.json", false);
  fs::current_path(before);
  EXPECT_TRUE(installer_.isInstalledAtPath(path_));
}

TEST_F(MCPInstallerTest, ALinkedFileStaysLinkedAndKeepsItsPermissions) {
  writeFile(folder_.file("real.json"), R"({"a":1})");
  ASSERT_EQ(chmod(folder_.file("real.json").c_str(), 0644), 0);
  fs::create_symlink("real.json", path_);
  installer_.installToPath(path_, false);
  EXPECT_TRUE(fs::is_symlink(path_));
  EXPECT_TRUE(installer_.isInstalledAtPath(folder_.file("real.json")));
  EXPECT_EQ(fs::status(folder_.file("real.json")).permissions(), fs::perms(0644));
}

////////////////////////////////////////////////////////////////////////////////////////////////
// Uninstalling.

struct Removal {
  const char* before;
  const char* after;
};

class Uninstalling : public MCPInstallerTest, public testing::WithParamInterface<Removal> {};

TEST_P(Uninstalling, LeavesAnObjectOfServersWithoutOurs) {
  writeFile(path_, GetParam().before);
  installer_.uninstallFromPath(path_);
  EXPECT_EQ(config(), GetParam().after);
  EXPECT_FALSE(installer_.isInstalledAtPath(path_));
}

INSTANTIATE_TEST_SUITE_P(
    Configs, Uninstalling,
    testing::Values(Removal{R"({"mcpServers":{"tessum":{"url":"x"},"other":{}},"a":1})",
                            R"({"a":1,"mcpServers":{"other":{}}})"},
                    Removal{R"({"mcpServers":{"tessum":null}})", R"({"mcpServers":{}})"},
                    Removal{R"({"mcpServers":{"other":{}}})", R"({"mcpServers":{"other":{}}})"},
                    Removal{R"({"theme":"dark"})", R"({"mcpServers":{},"theme":"dark"})"},
                    Removal{R"({})", R"({"mcpServers":{}})"},
                    Removal{R"({"mcpServers":["tessum"],"tessum":1})",
                            R"({"mcpServers":{},"tessum":1})"},
                    Removal{R"({"mcpServers":null})", R"({"mcpServers":{}})"}));

TEST_F(MCPInstallerTest, UninstallingRewritesTheFileAlsoWhenItHeldNoEntry) {
  writeFile(path_, R"({ "b":1,"a":2 })");
  installer_.uninstallFromPath(path_);
  EXPECT_EQ(readFile(path_), "{\n  \"a\": 2,\n  \"b\": 1,\n  \"mcpServers\": {}\n}");
}

TEST_F(MCPInstallerTest, UninstallingFromAMissingFileDoesNothing) {
  installer_.uninstallFromPath(folder_.file("a/mcp.json"));
  installer_.uninstall(MCPClient::cursor);
  EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(MCPInstallerTest, UninstallingLeavesAFileAloneThatIsNoObject) {
  for (const std::string content : {"", "no JSON", "[\"tessum\"]", "{\"mcpServers\":{},}"}) {
    writeFile(path_, content);
    installer_.uninstallFromPath(path_);
    EXPECT_EQ(readFile(path_), content);
  }
}

TEST_F(MCPInstallerTest, UninstallingUndoesInstallingForEachApplication) {
  for (const MCPClient client : MCPClient::allCases()) {
    installer_.install(client);
    installer_.uninstall(client);
    EXPECT_FALSE(installer_.isInstalled(client));
    EXPECT_EQ(readFile(client.configPath(locations_)), "{\n  \"mcpServers\": {}\n}");
  }
}

}  // namespace
}  // namespace tessum
