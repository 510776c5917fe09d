// 500 random configuration files: registering adds to them and changes nothing else, and removing
// gives back every byte.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "desktop/clients/edit/json_layout.h"
#include "desktop/clients/registration.h"
#include "tests/desktop/clients/registration_fixture.h"
#include "tests/desktop/clients/untidy_config.h"
#include "tests/support/plain_json.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;
using plain_json::Kind;
using plain_json::Node;

constexpr std::uint32_t kFiles = 500;
constexpr std::uint32_t kFewer = 120;  // for what differs little between files

ServerFormat formatOf(std::uint32_t seed) {
  if (seed % 3 == 2) return {.syntax = Syntax::toml, .container = "mcp_servers"};
  if (seed % 3 == 1) return {.container = "context_servers", .hasEnvironment = true};
  return {};
}

std::string contentOf(std::uint32_t seed) {
  const ServerFormat format = formatOf(seed);
  UntidyAuthor author(seed);
  return format.syntax == Syntax::toml ? author.toml(format.container)
                                       : author.json(format.container);
}

// Whether `part` is what remains of `whole` when some of its bytes are left out.
bool isWithin(std::string_view part, std::string_view whole) {
  for (const char byte : whole) {
    if (!part.empty() && part.front() == byte) part.remove_prefix(1);
  }
  return part.empty();
}

// The values of a JSON text, by a reader that is not the core's.
Node valuesOf(const std::string& text) {
  const auto node = plain_json::read(JsonLayout(text).plain());
  EXPECT_TRUE(node.has_value());
  return node.value_or(Node());
}

bool hasValue(const std::string& text) {
  return JsonLayout("[" + text.substr(startOfText(text)) + "\n]").plain().find('{') !=
         std::string::npos;
}

class RandomConfigs : public RegistrationTest {
 protected:
  [[nodiscard]] RegistrationOptions optionsOf(std::uint32_t seed) const {
    return {.form = seed % 2 == 0 ? EntryForm::stdio : EntryForm::http};
  }

  // The values must be those of `before`, but for the entry.
  void expectOnlyTheEntryIsNew(const std::string& before, std::string_view container) const {
    Node values = valuesOf(readFile(file_));
    Node& servers = values.members.at(std::string(container));
    EXPECT_EQ(servers.members.erase("tessum"), 1u);
    if (!hasValue(before)) return;
    Node expected = valuesOf(before);
    expected.members.try_emplace(std::string(container), Node{Kind::object, "", {}, {}});
    EXPECT_EQ(values, expected);
  }
};

TEST_F(RandomConfigs, AreAsUntidyAsFilesGet) {
  std::map<std::string, int> files;
  for (std::uint32_t seed = 0; seed < kFiles; ++seed) {
    const std::string content = contentOf(seed);
    files["CRLF"] += content.find("\r\n") != std::string::npos ? 1 : 0;
    files["mark"] += startOfText(content) > 0 ? 1 : 0;
    files["tab"] += content.find("\n\t") != std::string::npos ? 1 : 0;
    files["servers"] += content.find(formatOf(seed).container) != std::string::npos ? 1 : 0;
    if (formatOf(seed).syntax == Syntax::toml || !hasValue(content)) continue;
    const JsonLayout layout(content);
    files["comment"] += layout.hasComment({0, content.size()}) ? 1 : 0;
    files["not plain"] += layout.isPlain() ? 0 : 1;
    files["plain"] += layout.isPlain() ? 1 : 0;
    files["one line"] += content.find('\n') == std::string::npos ? 1 : 0;
  }
  EXPECT_EQ(files.size(), 8u);
  for (const auto& [trait, count] : files) EXPECT_GE(count, 30) << trait;
}

TEST_F(RandomConfigs, InstallingAndUninstallingGivesBackEveryByte) {
  for (std::uint32_t seed = 0; seed < kFiles; ++seed) {
    const std::string before = contentOf(seed);
    const RegistrationFile file{file_, formatOf(seed)};
    SCOPED_TRACE("file " + std::to_string(seed) + ":\n" + before);
    writeFile(file_, before);

    const RegistrationChange change = registerIn(file, optionsOf(seed), host_);
    ASSERT_EQ(change.outcome, Outcome::changed) << change.problem;
    const std::string installed = readFile(file_);
    EXPECT_TRUE(isWithin(before, installed)) << installed;
    if (file.format.syntax == Syntax::json) expectOnlyTheEntryIsNew(before, file.format.container);
    ASSERT_EQ(registerIn(file, optionsOf(seed), host_).outcome, Outcome::unchanged);
    ASSERT_EQ(readFile(file_), installed);

    ASSERT_EQ(unregisterFrom(file, {}, host_).outcome, Outcome::changed);
    ASSERT_EQ(readFile(file_), before) << "after " << installed;
    ASSERT_FALSE(fs::exists(records_));
  }
}

TEST_F(RandomConfigs, AChangeElsewhereInTheFileIsKept) {
  for (std::uint32_t seed = 0; seed < kFewer; ++seed) {
    const std::string before = contentOf(seed);
    if (startOfText(before) > 0) continue;
    const RegistrationFile file{file_, formatOf(seed)};
    SCOPED_TRACE("file " + std::to_string(seed) + ":\n" + before);
    const std::string added = file.format.syntax == Syntax::toml ? "# new\n" : "// new\n";
    writeFile(file_, before);
    ASSERT_EQ(registerIn(file, optionsOf(seed), host_).outcome, Outcome::changed);
    writeFile(file_, added + readFile(file_));
    ASSERT_EQ(unregisterFrom(file, {}, host_).outcome, Outcome::changed);
    ASSERT_EQ(readFile(file_), added + before);
  }
}

TEST_F(RandomConfigs, WithoutRecordsTheEntryGoesAndTheValuesStay) {
  for (std::uint32_t seed = 0; seed < kFewer; ++seed) {
    const std::string before = contentOf(seed);
    const RegistrationFile file{file_, formatOf(seed)};
    SCOPED_TRACE("file " + std::to_string(seed) + ":\n" + before);
    writeFile(file_, before);
    ASSERT_EQ(registerIn(file, optionsOf(seed), host_).outcome, Outcome::changed);
    fs::remove(records_);
    const std::string installed = readFile(file_);
    const RegistrationChange change = unregisterFrom(file, {}, host_);
    ASSERT_EQ(change.outcome, Outcome::changed) << installed << change.problem;
    ASSERT_FALSE(registrationIn(file, host_).entry);
    if (file.format.syntax == Syntax::toml || !hasValue(before)) continue;
    Node expected = valuesOf(before);
    expected.members.try_emplace(std::string(file.format.container),
                                 Node{Kind::object, "", {}, {}});
    ASSERT_EQ(valuesOf(readFile(file_)), expected) << readFile(file_);
  }
}

TEST_F(RandomConfigs, AnOutdatedRecordDoesNoHarm) {
  for (std::uint32_t seed = 0; seed < kFewer; ++seed) {
    const std::string before = contentOf(seed);
    const RegistrationFile file{file_, formatOf(seed)};
    SCOPED_TRACE("file " + std::to_string(seed) + ":\n" + before);
    // The record is of another file at this path.
    writeFile(file_, contentOf(seed + 3 * kFiles));
    ASSERT_EQ(registerIn(file, optionsOf(seed), host_).outcome, Outcome::changed);
    writeFile(file_, before);
    ASSERT_EQ(registerIn(file, optionsOf(seed + 1), host_).outcome, Outcome::changed);
    ASSERT_EQ(registerIn(file, optionsOf(seed), host_).outcome, Outcome::changed)
        << "the other form replaces the entry";
    ASSERT_EQ(unregisterFrom(file, {}, host_).outcome, Outcome::changed);
    ASSERT_EQ(readFile(file_), before);
  }
}

}  // namespace
}  // namespace tessum
