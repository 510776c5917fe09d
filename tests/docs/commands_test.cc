// Every command that the documents show is run as it stands there, by a user with an invented
// history, and what a document shows of its output is compared.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <ostream>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/desktop/user.h"
#include "tests/support/child_process.h"
#include "tests/support/environment.h"
#include "tests/support/temporary_folder.h"
#include "tools/demo_history.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

const fs::path kRoot = TESSUM_SOURCE_FOLDER;

// Commands that take a desktop, the network, minutes or a program of another kind, and what runs
// them instead.
struct Elsewhere {
  std::string_view command;
  const char* where;
};
constexpr Elsewhere kElsewhere[] = {
    {"Tessum record", "tests/desktop/recording/record_test.cc"},
    {"Tessum record --no-update-check", "tests/desktop/recording/record_test.cc"},
    {"Tessum record --http", "tests/desktop/recording/record_http_test.cc"},
    {"Tessum update", "tests/desktop/update/update_program_test_linux.cc"},
    {"Tessum update --download", "tests/desktop/update/update_program_test_linux.cc"},
    {"Tessum doctor", "tests/package/installed-debian"},
    {"Tessum doctor --close-open", "tests/desktop/doctor/doctor_test.cc"},
    {"scripts/test", ".ci/run"},
    {"scripts/run", "tests/package/from-readme"},
    {"cmake --build build/run", "tests/package/from-readme"},
    {"cmake --install build/run --component programs", "tests/package/from-readme"},
    {"cmake -B build -DTESSUM_UPDATE_PRIMARY_URL=https://updates.example/ \\\n"
     "               -DTESSUM_UPDATE_FALLBACK_URL=https://mirror.example/tessum",
     "tests/update/check-update-urls"},
    // What installs something, and the test of that.
    {"scripts/package", "tests/package/installed-debian"},
    {"sudo apt install ./build/package/tessum_1.0.0_amd64.deb", "tests/package/installed-debian"},
    {"sudo apt remove tessum", "tests/package/installed-debian"},
    {"sudo tar -xzf build/package/tessum-1.0.0-linux-x86_64.tar.gz -C /usr/local",
     "tests/package/installed-debian"},
    {"sudo debootstrap --variant=minbase bookworm root", "tests/package/installed-debian"},
    {"sudo tests/package/installed-debian build/package root", "tests/package/installed-debian"},
    {"benchmarks/run", "tests/benchmarks/in-brief"},
    {"benchmarks/run year", "tests/benchmarks/in-brief"},
    {"benchmarks/recording/run", "tests/benchmarks/in-brief"},
    {"benchmarks/update/run", "tests/benchmarks/in-brief"},
};

struct Command {
  std::string line;
  std::string output = {};
  bool showsOutput = false;
};

// A document, with the commands in it and what keeps them from being found.
struct Document {
  std::string name;
  std::vector<Command> commands = {};
  std::vector<std::string> problems = {};
};

void PrintTo(const Document& document, std::ostream* out) {
  *out << document.name;
}

// "sh" holds commands, "console" commands behind "$ " and their output; a line that ends in a
// backslash goes on in the next one. Other fences hold no commands, so each says what it holds.
Document readMarkdown(const fs::path& path) {
  Document document{path.filename().string()};
  std::string language;
  bool isInFence = false;
  bool goesOn = false;
  std::string before;
  for (const std::string& line : linesOf(readFile(path.string()))) {
    if (line.starts_with("```")) {
      isInFence = !isInFence;
      language = line.substr(3);
      goesOn = false;
      if (isInFence && language.empty()) {
        document.problems.push_back("a block that does not say what it holds");
      }
      continue;
    }
    if (!isInFence) {
      if (line.starts_with("    ") && before.empty()) {
        document.problems.push_back("a block without fences: " + line);
      }
      before = line;
      continue;
    }
    const bool isConsole = language == "console";
    if (!isConsole && language != "sh") continue;
    if (goesOn) {
      document.commands.back().line += "\n" + line;
    } else if (isConsole && line.starts_with("$ ")) {
      document.commands.push_back({.line = line.substr(2), .showsOutput = true});
    } else if (isConsole) {
      document.commands.back().output += line + "\n";
    } else if (!line.empty() && !line.starts_with("#")) {
      document.commands.push_back({.line = line});
    }
    goesOn = line.ends_with('\\');
  }
  return document;
}

// The examples of a manual page stand between .nf and .fi.
Document readManual(const fs::path& path) {
  Document document{path.filename().string()};
  bool isExample = false;
  for (std::string line : linesOf(readFile(path.string()))) {
    if (line == ".nf" || line == ".fi") {
      isExample = line == ".nf";
      continue;
    }
    line.erase(std::remove(line.begin(), line.end(), '\\'), line.end());
    if (isExample) document.commands.push_back({.line = line});
  }
  return document;
}

std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  bool isList = false;
  for (const std::string& line : linesOf(User().run({"--help"}).output)) {
    if (isList && line.starts_with("  ") && line[2] != ' ') {
      names.push_back(line.substr(2, line.find(' ', 2) - 2));
    }
    if (line == "Subcommands:") isList = true;
  }
  return names;
}

// The examples at the end of each command's own help.
std::vector<Document> readHelp() {
  std::vector<Document> documents;
  const User user;
  for (const std::string& name : commandNames()) {
    Document document{"help of " + name};
    for (const std::string& text : linesOf(user.run({name, "--help"}).output)) {
      if (text.starts_with("  Tessum ")) document.commands.push_back({.line = text.substr(2)});
    }
    documents.push_back(document);
  }
  return documents;
}

std::vector<Document> allDocuments() {
  std::vector<Document> documents{readMarkdown(kRoot / "README.md")};
  for (const auto& entry : fs::directory_iterator(kRoot / "docs")) {
    if (entry.path().extension() == ".md") documents.push_back(readMarkdown(entry.path()));
  }
  for (const auto& entry : fs::directory_iterator(kRoot / "packaging/man")) {
    documents.push_back(readManual(entry.path()));
  }
  for (Document& help : readHelp()) documents.push_back(std::move(help));
  return documents;
}

// The line without the remark behind it.
std::string withoutRemark(const std::string& line) {
  std::string command = line.substr(0, line.find("  #"));
  while (command.ends_with(' ')) command.pop_back();
  return command;
}

const Elsewhere* findElsewhere(const Command& command) {
  const std::string text = withoutRemark(command.line);
  for (const Elsewhere& entry : kElsewhere) {
    if (text == entry.command) return &entry;
  }
  return nullptr;
}

std::string replaced(std::string text, std::string_view part, std::string_view by) {
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size())) {
    text.replace(at, part.size(), by);
  }
  return text;
}

// The same with an unknown time of day behind each "since".
std::string withoutPresent(std::string text) {
  constexpr std::string_view kSince = "(since ";
  constexpr std::string_view kTime = "00:00";
  for (auto at = text.find(kSince); at != std::string::npos; at = text.find(kSince, at + 1)) {
    text.replace(at + kSince.size(), kTime.size(), kTime);
  }
  return text;
}

// A user whose programs are on the search path under both of their names, and who has recorded
// the days before the fifth of March, 2025.
class Reader {
 public:
  Reader() {
    for (const char* folder : {"bin", "home", "home/.local/share/Tessum"}) {
      fs::create_directories(folder_.file(folder));
    }
    const fs::path program = hostProgram();
    for (const char* name : {"Tessum", "tessum"}) {
      fs::create_symlink(program, folder_.file("bin") + "/" + name);
    }
    fs::create_symlink(program.parent_path() / "TessumMCP", folder_.file("bin/TessumMCP"));
    writeFile(folder_.file("bin/xdg-open"), "#!/bin/sh\n");  // opens no browser
    chmod(folder_.file("bin/xdg-open").c_str(), 0700);
    const ScopedVariable zone("TZ", "UTC");
    const SystemCalendar calendar;
    writeDemoHistory(home() + "/.local/share/Tessum/activities.db",
                     demoHistory({.days = 1, .sessionsPerDay = 12, .seed = 1},
                                 at("2025-03-05T12:00:00Z"), calendar),
                     calendar);
  }

  [[nodiscard]] std::string home() const { return folder_.file("home"); }

  // What `line` does in a shell; a question is answered with yes. The home folder is "~" in the
  // output, which has both streams, and every line ends with a line feed alone.
  [[nodiscard]] Outcome run(const std::string& line) const {
    ChildProcess shell(
        "sh", {.arguments = {"-c", "cd && exec 2>&1\n" + line},
               .environment = {"HOME=" + home(), "XDG_DATA_HOME=" + home() + "/.local/share",
                               "XDG_CONFIG_HOME=" + home() + "/.config",
                               "PATH=" + folder_.file("bin") + ":/usr/bin:/bin", "TZ=UTC"}});
    shell.write("y\n");
    shell.closeInput();
    const std::string output = shell.readRest();
    return {shell.finish().code.value_or(-1),
            replaced(replaced(output, home(), "~"), "\r\n", "\n"),
            {}};
  }

 private:
  TemporaryFolder folder_;
};

std::string nameOf(const testing::TestParamInfo<Document>& info) {
  std::string name = info.param.name;
  const auto isSign = [](unsigned char c) { return std::isalnum(c) == 0; };
  std::replace_if(name.begin(), name.end(), isSign, '_');
  return name;
}

class Documents : public testing::TestWithParam<Document> {};

TEST_P(Documents, ShowCommandsThatWork) {
  EXPECT_EQ(GetParam().problems, std::vector<std::string>());
  const Reader reader;
  for (const Command& command : GetParam().commands) {
    if (findElsewhere(command) != nullptr) continue;
    SCOPED_TRACE(command.line);
    const Outcome outcome = reader.run(command.line);
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    if (!command.showsOutput) continue;
    EXPECT_EQ(withoutPresent(outcome.output), withoutPresent(command.output));
  }
}

INSTANTIATE_TEST_SUITE_P(All, Documents, testing::ValuesIn(allDocuments()), nameOf);

TEST(Options, StandInTheManualAndInEachCompletion) {
  const fs::path packaging = kRoot / "packaging";
  const std::string manual = replaced(readFile(packaging / "man/tessum.1"), "\\", "");
  const std::string bash = readFile(packaging / "completions/tessum.bash");
  const std::string zsh = readFile(packaging / "completions/_tessum");
  const std::string fish = readFile(packaging / "completions/tessum.fish");
  const std::regex option("--([a-z-]+)");
  const User user;
  for (const std::string& command : commandNames()) {
    const std::string help = user.run({command, "--help"}).output;
    for (std::sregex_iterator found(help.begin(), help.end(), option), end; found != end; ++found) {
      SCOPED_TRACE(command + " " + found->str());
      if (found->str() == "--help") continue;
      EXPECT_NE(manual.find(found->str()), std::string::npos);
      EXPECT_NE(bash.find(found->str()), std::string::npos);
      EXPECT_NE(zsh.find(found->str()), std::string::npos);
      EXPECT_NE(fish.find("-l " + found->str(1)), std::string::npos);
    }
  }
}

// In the README: "> " stands before the request, "< " before the answer, and each line end in the
// answer's text is shown as one.
TEST(TheConversation, IsWhatTheServerAnswers) {
  const std::string readme = readFile(kRoot / "README.md");
  const auto between = [&](std::string_view before, std::string_view after) {
    const auto start = readme.find(before) + before.size();
    return readme.substr(start, readme.find(after, start) - start);
  };
  const std::string request = between("\n> ", "\n");
  const std::string answer = replaced(between("\n< ", "\n```"), "\n", "\\n");

  User user;
  user.addSession("Editor", nullptr, "2025-03-04T09:00:00Z", "2025-03-04T10:01:00Z");
  user.addSession("Mail", nullptr, "2025-03-04T10:01:00Z", "2025-03-04T10:04:00Z");
  user.addSession("Terminal", nullptr, "2025-03-04T10:04:00Z", "2025-03-04T10:04:42Z");
  user.addSession("Mail", nullptr, "2025-03-04T10:05:00Z", "2025-03-04T10:07:00Z");
  ChildProcess server(fs::path(hostProgram()).parent_path() / "TessumMCP",
                      {.environment = user.environment()});
  server.writeLine(request);
  EXPECT_EQ(server.readLine(), answer);
}

TEST(CommandsRunElsewhere, AreStillShownAndStillRunThere) {
  std::set<std::string_view> shown;
  for (const Document& document : allDocuments()) {
    for (const Command& command : document.commands) {
      if (const Elsewhere* entry = findElsewhere(command)) shown.insert(entry->command);
    }
  }
  for (const Elsewhere& entry : kElsewhere) {
    EXPECT_EQ(shown.count(entry.command), 1U) << entry.command;
    EXPECT_TRUE(fs::exists(kRoot / entry.where)) << entry.where;
  }
}

}  // namespace
}  // namespace tessum
