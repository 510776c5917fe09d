// Random documents, written as untidily as JSON allows: registering and removing Tessum leaves
// all of their values as they were, judged by a reader that is not the core's.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "core/install/mcp_installer.h"
#include "tests/support/chance.h"
#include "tests/support/fakes/fake_locations.h"
#include "tests/support/plain_json.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

constexpr int kDocuments = 150;
constexpr int kDeepest = 5;

class Author : Chance {
 public:
  explicit Author(std::uint32_t seed) : Chance(seed) {}

  // An object, often with servers and sometimes with an entry of ours among them.
  std::string document() {
    std::string text = maybe(8) ? "\xEF\xBB\xBF" : "";
    return text + space() + object(0) + space();
  }

 private:
  std::string space() {
    return maybe(3) ? oneOf<6>({" ", "\n", "\t", "\r\n", "  \n  ", "\n\n"}) : "";
  }

  std::string digits(int atLeast) {
    std::string text;
    for (int count = atLeast + (maybe(6) ? below(40) : below(4)); count > 0; --count) {
      text += static_cast<char>('0' + below(10));
    }
    return text;
  }

  std::string number() {
    std::string text = maybe(3) ? "-" : "";
    text += maybe(3) ? "0" : static_cast<char>('1' + below(9)) + digits(0);
    if (maybe(2)) text += "." + digits(1);
    if (maybe(3)) text += oneOf<6>({"e", "E", "e+", "E+", "e-", "E-"}) + digits(1);
    return text;
  }

  std::string string() {
    std::string text = "\"";
    for (int count = below(6); count > 0; --count) {
      text += oneOf<22>({"a",       "B",       " ",   "/",   "\\/", "\\\"",           "\\\\",
                         "\\b",     "\\f",     "\\n", "\\r", "\\t", "\\u0000",        "\\u001f",
                         "\\u0041", "\\u00E9", "é",   "€",   "😀",   "\\uD83D\\uDE00", "\x7F",
                         "\\u2028"});
    }
    return text + "\"";
  }

  std::string key() {
    if (!maybe(3)) return string();
    return oneOf<5>({"\"mcpServers\"", "\"tessum\"", "\"mcp\\u0053ervers\"", "\"url\"", "\"\""});
  }

  std::string object(int level) {
    std::string text = "{" + space();
    const int count = below(5) + (level == 0 ? 1 : 0);
    for (int i = 0; i < count; ++i) {
      if (i > 0) text += "," + space();
      text += key() + space() + ":" + space() + value(level + 1) + space();
    }
    return text + "}";
  }

  std::string array(int level) {
    std::string text = "[" + space();
    const int count = below(5);
    for (int i = 0; i < count; ++i) {
      if (i > 0) text += "," + space();
      text += value(level + 1) + space();
    }
    return text + "]";
  }

  std::string value(int level) {
    switch (below(level < kDeepest ? 8 : 5)) {
      case 0:
        return "null";
      case 1:
        return maybe(2) ? "true" : "false";
      case 2:
      case 3:
        return number();
      case 4:
        return string();
      case 5:
        return array(level);
      default:
        return object(level);
    }
  }
};

// `config` with the servers that uninstalling leaves: an object without our entry.
plain_json::Node uninstalled(plain_json::Node config) {
  plain_json::Node& servers = config.members["mcpServers"];
  if (servers.kind != plain_json::Kind::object) servers = {plain_json::Kind::object, "", {}, {}};
  servers.members.erase("tessum");
  return config;
}

TEST(RandomConfigs, InstallingAndUninstallingChangesNothingButTheServers) {
  const TemporaryFolder folder;
  const std::string path = folder.file("mcp.json");
  const SystemFiles files;
  const FakeLocations locations;
  const MCPInstaller installer("http://localhost:7384/mcp", files, locations);

  for (std::uint32_t seed = 0; seed < kDocuments; ++seed) {
    const std::string before = Author(seed).document();
    SCOPED_TRACE("document " + std::to_string(seed) + ": " + before);
    const bool useStdio = seed % 2 == 0;
    const auto read = plain_json::read(before);
    ASSERT_TRUE(read.has_value());
    writeFile(path, before);

    installer.installToPath(path, useStdio);
    const std::string once = readFile(path);
    EXPECT_TRUE(installer.isInstalledAtPath(path));
    installer.installToPath(path, useStdio);
    ASSERT_EQ(readFile(path), once);
    const auto installed = plain_json::read(once);
    ASSERT_TRUE(installed.has_value());
    ASSERT_EQ(uninstalled(*installed), uninstalled(*read));

    installer.uninstallFromPath(path);
    EXPECT_FALSE(installer.isInstalledAtPath(path));
    ASSERT_EQ(plain_json::read(readFile(path)), uninstalled(*read));
  }
}

}  // namespace
}  // namespace tessum
