#include "tests/protocol/transcript.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <stdexcept>
#include <string_view>

#include "core/json/reader.h"
#include "tests/support/child_process.h"
#include "tests/support/server_program.h"
#include "tests/support/sql.h"
#include "tests/support/temporary_folder.h"

namespace tessum {
namespace {

using Kind = TranscriptLine::Kind;

struct Form {
  std::string_view prefix;
  Kind kind;
};
constexpr Form kForms[] = {{"zone ", Kind::zone},
                           {"sql ", Kind::sql},
                           {"> ", Kind::send},
                           {"< ", Kind::expectJson},
                           {"~ ", Kind::expectMatch}};

// Opens and closes the server once, so that the database has its tables.
void createDatabase(const ChildProcess::Options& options) {
  ChildProcess server(serverProgram(), options);
  ASSERT_EQ(server.finish(), kSuccess);
}

void expectAnswer(const TranscriptLine& line, const std::string& answer) {
  if (line.kind == Kind::expectMatch) {
    EXPECT_TRUE(std::regex_match(answer, std::regex(line.text))) << "line " << line.number << ":\n"
                                                                 << answer;
    return;
  }
  EXPECT_TRUE(json::parse(answer) == json::parse(line.text)) << "line " << line.number << ":\n"
                                                             << answer;
}

}  // namespace

std::vector<TranscriptLine> readTranscript(const std::string& path) {
  std::ifstream file(path);
  std::vector<TranscriptLine> lines;
  std::string text;
  for (int number = 1; std::getline(file, text); ++number) {
    if (text.empty() || text.starts_with('#')) continue;
    bool isKnown = false;
    for (const Form& form : kForms) {
      if (!text.starts_with(form.prefix)) continue;
      lines.push_back({form.kind, text.substr(form.prefix.size()), number});
      isKnown = true;
    }
    if (!isKnown) throw std::runtime_error(path + ":" + std::to_string(number) + ": unknown form");
  }
  return lines;
}

void playTranscript(const std::string& path) {
  const TemporaryFolder folder;
  const auto lines = readTranscript(path);
  ASSERT_FALSE(lines.empty()) << path;
  const std::string zone = lines[0].kind == Kind::zone ? lines[0].text : "UTC";
  const ChildProcess::Options options{
      .arguments = {},
      .environment = {"XDG_DATA_HOME=" + folder.path(), "HOME=" + folder.path(), "TZ=" + zone},
      .prepare = {}};
  createDatabase(options);
  const auto database = std::filesystem::recursive_directory_iterator(folder.path());
  std::string databasePath;
  for (const auto& entry : database) {
    if (entry.path().filename() == "activities.db") databasePath = entry.path();
  }
  Sql sql(databasePath);

  // Started with the first message: before, SQL may hold a lock on the database, which would make
  // the start fail.
  std::optional<ChildProcess> server;
  for (const TranscriptLine& line : lines) {
    switch (line.kind) {
      case Kind::zone:
        break;
      case Kind::sql:
        sql.run(line.text);
        break;
      case Kind::send:
        if (!server) server.emplace(serverProgram(), options);
        server->writeLine(line.text);
        break;
      case Kind::expectJson:
      case Kind::expectMatch: {
        // The server must answer before it gets the next line.
        ASSERT_TRUE(server.has_value()) << "line " << line.number << ": nothing was sent";
        const auto answer = server->readLine();
        ASSERT_TRUE(answer.has_value()) << "line " << line.number << ": " << server->errors();
        expectAnswer(line, *answer);
      }
    }
  }
  server->closeInput();
  EXPECT_EQ(server->readRest(), "");
  EXPECT_EQ(server->wait(), kSuccess);
  EXPECT_EQ(server->errors(), "");
}

}  // namespace tessum
