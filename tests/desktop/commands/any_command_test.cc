// Tests that apply to every command on the history: bad days, and a history that is missing,
// locked, damaged or read-only.

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include "tests/desktop/user.h"
#include "tests/support/child_process.h"
#include "tests/support/sql.h"

namespace tessum {
namespace {

struct Command {
  const char* name;
  std::vector<std::string> arguments;

  // The arguments with kFile replaced by a file of the user.
  [[nodiscard]] std::vector<std::string> argumentsOf(const User& user) const {
    auto changed = arguments;
    std::replace(changed.begin(), changed.end(), std::string(kFile), fileOf(user));
    return changed;
  }

  static std::string fileOf(const User& user) { return user.file("made"); }
  static constexpr const char* kFile = "FILE";
};

const Command kReaders[] = {
    {"day", {"day", "2025-03-04"}},
    {"dayPlain", {"day", "2025-03-04", "--plain"}},
    {"usage", {"usage", "2025-03-04"}},
    {"notes", {"notes", "2025-03-04"}},
    {"search", {"search", "x"}},
    {"exportCsv", {"export"}},
    {"exportJson", {"export", "--format", "json"}},
    {"timelineFile", {"timeline", "2025-03-04", "-o", Command::kFile}},
    {"backup", {"backup", Command::kFile}},
};

const Command kWriters[] = {
    {"record", {"record", "--no-update-check"}},
    {"note", {"note", "x"}},
    {"endNote", {"note", "--end"}},
    {"forget", {"forget", "--app", "Editor", "--yes"}},
    {"closeOpen", {"doctor", "--close-open", "10m"}},
};

// Separate, because it also writes a file into the history's folder.
const Command kTimeline{"timeline", {"timeline", "2025-03-04"}};

// This command works without a history, too.
const Command kStatus{"status", {"status"}};

std::vector<Command> readersAnd(std::vector<Command> others) {
  others.push_back(kTimeline);
  others.insert(others.end(), std::begin(kReaders), std::end(kReaders));
  return others;
}

std::vector<Command> allCommands() {
  auto commands = readersAnd({std::begin(kWriters), std::end(kWriters)});
  commands.push_back(kStatus);
  return commands;
}

std::string commandName(const testing::TestParamInfo<Command>& info) {
  return info.param.name;
}

void fill(const User& user) {
  Database database = user.database();
  database.insert({.id = {},
                   .appName = "Editor",
                   .bundleID = {},
                   .title = "x",
                   .startTime = at("2025-03-04T09:00:00Z"),
                   .endTime = {}});
  database.insertAnnotation(
      {.id = {}, .text = "Note", .startedAt = at("2025-03-04T09:00:00Z"), .endedAt = {}});
  Sql(user.historyPath())
      .run(
          "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 499) "
          "INSERT INTO activities (app_name, title, start_time, end_time) "
          "SELECT 'Editor', printf('%.100c', 'x'), strftime('%s', '2025-03-04') + 36000 + i, "
          "strftime('%s', '2025-03-04') + 36001 + i FROM n;");
}

void expectFailure(const Outcome& outcome, const std::string& complaint) {
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.errors.starts_with("Tessum: ")) << outcome.errors;
  EXPECT_NE(outcome.errors.find(complaint), std::string::npos) << outcome.errors;
}

class NeedsARecord : public testing::TestWithParam<Command> {};

TEST_P(NeedsARecord, SaysThatThereIsNoneAndMakesNone) {
  const User user;
  const Outcome outcome = user.run(GetParam().argumentsOf(user));
  expectFailure(outcome, "there is no history yet");
  EXPECT_EQ(outcome.output, "");
  EXPECT_FALSE(std::filesystem::exists(Command::fileOf(user)));
  EXPECT_FALSE(std::filesystem::exists(user.dataFolder()));
}

INSTANTIATE_TEST_SUITE_P(Commands, NeedsARecord,
                         testing::ValuesIn(readersAnd({{"forget", {"forget", "--app", "x"}},
                                                       {"endNote", {"note", "--end"}},
                                                       {"closeOpen", {"doctor", "--close-open"}}})),
                         commandName);

struct Started {
  Command command;
  std::chrono::steady_clock::time_point start;
  std::unique_ptr<ChildProcess> program;
};

// Waits for one of the programs to end, and removes it from `programs`.
Started takeEnded(std::vector<Started>& programs) {
  siginfo_t ended{};
  if (waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT) != 0) throw std::runtime_error("waitid");
  const auto found = std::find_if(programs.begin(), programs.end(), [&](const Started& started) {
    return started.program->id() == ended.si_pid;
  });
  if (found == programs.end()) throw std::runtime_error("a program of another test has ended");
  Started taken = std::move(*found);
  programs.erase(found);
  return taken;
}

// "record" and "note TEXT" do not wait for a lock. The others wait a second for it; all run in
// parallel, so the test takes no longer than that.
TEST(ALockedRecord, IsWaitedForThenReportedAndNotChanged) {
  const User user;
  fill(user);
  Sql other(user.historyPath());
  other.run("BEGIN EXCLUSIVE;");
  std::vector<Started> programs;
  for (const Command& command : allCommands()) {
    const auto start = std::chrono::steady_clock::now();
    programs.push_back({command, start, user.start(command.argumentsOf(user))});
  }
  while (!programs.empty()) {
    const Started ended = takeEnded(programs);
    const auto waited = std::chrono::steady_clock::now() - ended.start;
    const std::string name = ended.command.name;
    SCOPED_TRACE(name);
    EXPECT_TRUE(name == "record" || name == "note" || waited >= std::chrono::seconds(1));
    const Outcome outcome = outcomeOf(*ended.program);
    expectFailure(outcome, sqliteText(SQLITE_BUSY));
    EXPECT_EQ(outcome.output, "");
  }
  EXPECT_FALSE(std::filesystem::exists(Command::fileOf(user)));
  EXPECT_EQ(other.row("SELECT COUNT(*) FROM activities WHERE end_time IS NULL"), "1");
  EXPECT_EQ(other.row("SELECT COUNT(*) FROM activities"), "501");
  EXPECT_EQ(other.row("SELECT COUNT(*) FROM annotations WHERE ended_at IS NULL"), "1");
  EXPECT_EQ(other.row("SELECT COUNT(*) FROM annotations"), "1");
}

class MeetsDamage : public testing::TestWithParam<Command> {};

// The damaged pages hold rows; the first pages still describe the tables.
TEST_P(MeetsDamage, SaysSoInsteadOfShowingARest) {
  const User user;
  fill(user);
  std::string bytes = readFile(user.historyPath());
  constexpr std::size_t kPage = 4096;
  ASSERT_GT(bytes.size(), 12 * kPage);
  for (std::size_t i = kPage; i < bytes.size(); ++i) bytes[i] = '\x5a';
  writeFile(user.historyPath(), bytes);
  expectFailure(user.run(GetParam().argumentsOf(user)), sqliteText(SQLITE_CORRUPT));
  EXPECT_EQ(readFile(user.historyPath()), bytes);
  EXPECT_FALSE(std::filesystem::exists(Command::fileOf(user)));
}

INSTANTIATE_TEST_SUITE_P(Commands, MeetsDamage, testing::ValuesIn(allCommands()), commandName);

class MeetsAnotherFile : public testing::TestWithParam<Command> {};

TEST_P(MeetsAnotherFile, LeavesWhatIsNoDatabaseAlone) {
  const User user;
  std::filesystem::create_directories(user.dataFolder());
  const std::string letter(5000, 'a');
  writeFile(user.historyPath(), letter);
  expectFailure(user.run(GetParam().argumentsOf(user)), sqliteText(SQLITE_NOTADB));
  EXPECT_EQ(readFile(user.historyPath()), letter);
}

INSTANTIATE_TEST_SUITE_P(Commands, MeetsAnotherFile, testing::ValuesIn(allCommands()), commandName);

class ReadsWhatIsReadOnly : public testing::TestWithParam<Command> {};

TEST_P(ReadsWhatIsReadOnly, LikeAnyOther) {
  const User user;
  fill(user);
  chmod(user.historyPath().c_str(), 0400);
  chmod(user.dataFolder().c_str(), 0500);
  const Outcome outcome = user.runWithoutPowers(GetParam().argumentsOf(user));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_NE(outcome.output, "");
  chmod(user.dataFolder().c_str(), 0700);
}

INSTANTIATE_TEST_SUITE_P(Commands, ReadsWhatIsReadOnly, testing::ValuesIn(kReaders), commandName);
INSTANTIATE_TEST_SUITE_P(Status, ReadsWhatIsReadOnly, testing::Values(kStatus), commandName);

TEST(TheTimeline, CannotBeDrawnIntoAFolderThatIsReadOnly) {
  const User user;
  fill(user);
  chmod(user.dataFolder().c_str(), 0500);
  expectFailure(user.runWithoutPowers(kTimeline.arguments),
                "Cannot create a file in " + user.dataFolder());
  chmod(user.dataFolder().c_str(), 0700);
}

class WritesToWhatIsReadOnly : public testing::TestWithParam<Command> {};

TEST_P(WritesToWhatIsReadOnly, SaysSoAndChangesNothing) {
  const User user;
  fill(user);
  writeFile(user.dataFolder() + "/recorder.lock", "");  // left by an earlier recorder
  const std::string before = readFile(user.historyPath());
  chmod(user.historyPath().c_str(), 0400);
  chmod(user.dataFolder().c_str(), 0500);
  expectFailure(user.runWithoutPowers(GetParam().argumentsOf(user)), sqliteText(SQLITE_READONLY));
  chmod(user.dataFolder().c_str(), 0700);
  EXPECT_EQ(readFile(user.historyPath()), before);
}

INSTANTIATE_TEST_SUITE_P(Commands, WritesToWhatIsReadOnly, testing::ValuesIn(kWriters),
                         commandName);

class UnknownDay : public testing::TestWithParam<Command> {};

TEST_P(UnknownDay, IsAMistakeInTheCommandLine) {
  const User user;
  fill(user);
  for (const char* day : {"2025-02-30", "04/03/2025", "tomorrow", "", "2025-3-4x"}) {
    auto arguments = GetParam().arguments;
    arguments.push_back(day);
    const Outcome outcome = user.run(arguments);
    if (GetParam().arguments.size() > 1 && *day == '\0') continue;  // an option left open
    EXPECT_EQ(outcome.status, 2) << day;
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.errors.starts_with("Tessum: unknown period")) << outcome.errors;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Commands, UnknownDay,
    testing::Values(Command{"day", {"day"}}, Command{"usage", {"usage"}},
                    Command{"notes", {"notes"}}, Command{"timeline", {"timeline"}},
                    Command{"export", {"export"}}, Command{"exportFrom", {"export", "--from"}},
                    Command{"exportTo", {"export", "--to"}},
                    Command{"searchIn", {"search", "x", "--in"}}, Command{"forget", {"forget"}},
                    Command{"forgetTo", {"forget", "--from", "today", "--to"}}),
    commandName);

TEST(CommandLine, AnsweringForHelpGivesExamplesForEveryCommand) {
  const User user;
  const std::string all = user.run({"--help"}).output;
  const auto lines = linesOf(all);
  bool isCommand = false;
  int count = 0;
  for (const std::string& line : lines) {
    if (isCommand && line.starts_with("  ") && line[2] != ' ') {
      const std::string name = line.substr(2, line.find(' ', 2) - 2);
      const Outcome help = user.run({name, "--help"});
      EXPECT_EQ(help.status, 0) << name;
      EXPECT_NE(help.output.find("Example"), std::string::npos) << name;
      EXPECT_NE(help.output.find("  Tessum " + name), std::string::npos) << name;
      ++count;
    }
    if (line == "Subcommands:") isCommand = true;
  }
  EXPECT_GE(count, 10);
}

TEST(CommandLine, TellsTheVersion) {
  const Outcome outcome = User().run({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "Tessum " TESSUM_VERSION "\n");
}

TEST(CommandLine, WhatIsUnknownIsAMistake) {
  const User user;
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                    {"bogus"},
                                                    {"day", "--bogus"},
                                                    {"day", "today", "today"},
                                                    {"search"},
                                                    {"search", "x", "--limit", "0"},
                                                    {"search", "x", "--limit", "many"},
                                                    {"export", "--format", "xml"},
                                                    {"backup"}}) {
    const Outcome outcome = user.run(arguments);
    EXPECT_EQ(outcome.status, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.errors.starts_with("Tessum: ")) << outcome.errors;
  }
}

TEST(CommandLine, OutputThatCannotBeWrittenIsAFailure) {
  const User user;
  fill(user);
  for (const char* command : {"day 2025-03-04", "export", "export --format json", "status"}) {
    const std::string line = "\"" + hostProgram() + "\" " + command + " > /dev/full";
    ChildProcess shell("sh", {.arguments = {"-c", line}, .environment = user.environment()});
    EXPECT_EQ(shell.finish(), kFailure) << command;
    EXPECT_NE(shell.errors().find("cannot write to standard output"), std::string::npos);
  }
}

}  // namespace
}  // namespace tessum
