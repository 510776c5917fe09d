#include "desktop/clients/edit/toml_text.h"

#include <gtest/gtest.h>

#include <string>

namespace tessum {
namespace {

const TomlText kToml("mcp_servers", "tessum");
const json::Value kTomlEntry =
    json::Value::Object{{"args", json::Value::Array()}, {"command", "/bin/\"x\""}};

// The entry's table.
constexpr char kTable[] = "[mcp_servers.tessum]\nargs = []\ncommand = \"/bin/\\\"x\\\"\"\n";

TEST(TomlText, AddsATableAtTheEndAndTakesItOutAgain) {
  const std::string table = kTable;
  for (const auto& [before, lead] : {std::pair<std::string, std::string>{"", ""},
                                     {"a = 1\n", "\n"},
                                     {"a = 1 # c", "\n\n"},
                                     {"\xEF\xBB\xBF", ""},
                                     {"[mcp_servers]\n[mcp_servers.b]\nx = '''\n[a]\n'''", "\n\n"},
                                     {"x = nan\n", "\n"}}) {
    const EditedText edited = kToml.withEntry(before, kTomlEntry, {});
    EXPECT_EQ(edited.text, before + lead + table);
    EXPECT_EQ(kToml.withoutEntry(edited.text, edited.addition), before);
  }
}

TEST(TomlText, WritesTheFilesLineBreaks) {
  EXPECT_EQ(kToml.withEntry("a = 1\r\n", kTomlEntry, {}).text,
            "a = 1\r\n\r\n[mcp_servers.tessum]\r\nargs = []\r\ncommand = \"/bin/\\\"x\\\"\"\r\n");
}

TEST(TomlText, ReplacesAnEntryInItsPlace) {
  for (const char* old : {"[mcp_servers.tessum] # old\ncommand = 'x'\n",
                          "[ mcp_servers . \"tessum\" ]\nx = \"\"\"\n[z]\n\"\"\"\n"}) {
    const EditedText edited =
        kToml.withEntry(std::string("# a\n") + old + "\n[b]\nc = 1\n", kTomlEntry, {});
    EXPECT_TRUE(edited.isReplaced);
    EXPECT_EQ(edited.text, std::string("# a\n") + kTable + "\n[b]\nc = 1\n");
  }
}

TEST(TomlText, TakesOutEveryFormOfAnEntry) {
  for (const char* entry :
       {"[mcp_servers.tessum]\ncommand = 'x'\n[mcp_servers.tessum.env]\nA = 'b'\n",
        "[mcp_servers]\ntessum = { command = 'x' }\n", "mcp_servers.tessum.command = 'x'\n",
        "[mcp_servers]\ntessum.command = 'x' # mine\ntessum.args = [\n  ']', # ]\n]\n"}) {
    const std::string without = kToml.withoutEntry(std::string("a = 1\n") + entry, {});
    EXPECT_FALSE(kToml.entry(without)) << without;
    EXPECT_TRUE(without.starts_with("a = 1\n")) << without;
  }
}

class TomlRefusal : public testing::TestWithParam<const char*> {};

TEST_P(TomlRefusal, IsForWhatCannotBeEditedSafely) {
  EXPECT_THROW(static_cast<void>(kToml.withEntry(GetParam(), kTomlEntry, {})), CannotEdit);
}

INSTANTIATE_TEST_SUITE_P(Texts, TomlRefusal,
                         testing::Values("mcp_servers = { b = { command = 'x' } }\n",
                                         "mcp_servers = {}\n", "mcp_servers = 1\n",
                                         "[[mcp_servers]]\na = 1\n", "a = \n", "a = 'x\n",
                                         "[a]\n[a]\n", "a = \"\xFF\"\n", "{}",
                                         "mcp_servers.b.command = 'x'\n[b"));

TEST(TomlText, RewritesWhatItCanReadAndSaysWhatIsLost) {
  const RewrittenText read =
      kToml.rewritten("b = 1 # c\nmcp_servers = { x = { y = 1 } }", kTomlEntry);
  EXPECT_TRUE(read.isLossy);
  EXPECT_NE(read.text.find("b = 1"), std::string::npos) << read.text;
  EXPECT_EQ(kToml.entry(read.text), kTomlEntry);
  EXPECT_EQ(kToml.rewritten("no TOML", kTomlEntry).text, kTable);
}

}  // namespace
}  // namespace tessum
