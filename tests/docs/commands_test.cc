// Runs every command that the documents show, as a user with an invented history, and compares its
// output with what the document shows.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/desktop/user.h"
#include "tests/docs/documents.h"
#include "tests/support/child_process.h"
#include "tests/support/environment.h"
#include "tests/support/temporary_folder.h"
#include "tools/demo_history.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

const fs::path kRoot = sourceFolder();

// A command that needs a desktop, the network, minutes or root. The file `where`, which contains
// the text `call`, runs it instead.
struct Elsewhere {
  std::string_view command;
  const char* where;
  const char* call;
};
constexpr Elsewhere kElsewhere[] = {
    {"Tessum record", "benchmarks/recording/run", "launch \"$program\" record\n"},
    {"Tessum record --no-update-check", "tests/desktop/recording/record_test.cc",
     R"(start(TESSUM_PROGRAM, {"record", "--no-update-check"})"},
    {"Tessum record --http", "tests/desktop/recording/record_http_test.cc",
     R"({"record", "--http", "--no-update-check"})"},
    {"Tessum serve", "tests/desktop/recording/record_http_test.cc", R"(open({"serve"}))"},
    {"Tessum record --away-after 10m --titles last",
     "tests/desktop/recording/away_recording_test.cc", R"("--away-after", "2s")"},
    {"Tessum setup", "tests/desktop/setup/setup_test.cc", R"(run({"setup"}, "y\n"))"},
    {"Tessum setup --yes", "tests/desktop/setup/setup_test.cc", R"(run({"setup", "--yes"}))"},
    {"Tessum setup --undo", "tests/desktop/setup/setup_test.cc", R"(run({"setup", "--undo"}, ")"},
    {"Tessum settings edit", "tests/desktop/commands/settings_test.cc", R"({"settings", "edit"})"},
    {"Tessum update", "tests/desktop/update/update_program_test_linux.cc", R"(run({"update"}))"},
    {"Tessum update --download", "tests/desktop/update/update_program_test_linux.cc",
     R"(run({"update", "--download"}))"},
    {"Tessum doctor", "tests/package/installed-debian", "tessum doctor\n"},
    {"Tessum doctor --json", "tests/desktop/data/data_test.cc", R"(expectData("doctor", 1))"},
    {"Tessum doctor --close-open", "tests/desktop/doctor/doctor_test.cc",
     R"(run({"doctor", "--close-open"}))"},
    {"gnome-extensions enable focused-window-44@tessum", "tests/desktops/gnome_shell.cc",
     R"("gnome-extensions", "enable", extension_)"},
    {"gnome-extensions enable focused-window@tessum", "tests/desktops/gnome_shell.cc",
     R"("gnome-extensions", "enable", extension_)"},
    {"scripts/test", ".ci/run", " scripts/test "},
    {"scripts/run", "tests/package/from-readme", "| scripts/run |"},
    {"cmake -B build -DTESSUM_UPDATE_PRIMARY_URL=https://updates.example/ \\\n"
     "               -DTESSUM_UPDATE_FALLBACK_URL=https://mirror.example/tessum",
     "tests/update/check-update-urls", R"(-D TESSUM_UPDATE_FALLBACK_URL="$2" -P "$module")"},
    {"scripts/package", ".ci/run", " scripts/package\n"},
    {"sudo apt install ./build/package/tessum_1.0.0_amd64.deb", "tests/package/installed-debian",
     "install_packages /tmp/tessum.deb\n"},
    {"sudo apt remove tessum", "tests/package/installed-debian",
     "apt-get purge -qq -y --auto-remove tessum >"},
    {"sudo tar -xzf build/package/tessum-1.0.0-linux-x86_64.tar.gz -C /usr/local",
     "tests/package/installed-debian", "tar -xzC /tmp/archive <"},
    {"tests/package/follows-policy build/package", ".ci/run",
     " tests/package/follows-policy build/package\n"},
    {"sudo tests/package/installed-debian build/package", ".ci/run",
     " tests/package/installed-debian build/package\n"},
    {"benchmarks/run", "tests/benchmarks/in-brief", "\nbenchmarks/run day\n"},
    {"benchmarks/run year", "tests/benchmarks/in-brief", "\nbenchmarks/run day\n"},
    {"benchmarks/recording/run", "tests/benchmarks/in-brief", "\nbenchmarks/recording/run "},
    {"benchmarks/reports/run", "tests/benchmarks/in-brief", "\nbenchmarks/reports/run "},
    {"benchmarks/update/run", "tests/benchmarks/in-brief", "\nbenchmarks/update/run "},
};

// The line without its trailing comment.
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

// The same with each time of day after "since" replaced.
std::string withoutPresent(std::string text) {
  constexpr std::string_view kSince = "(since ";
  constexpr std::string_view kTime = "00:00";
  for (auto at = text.find(kSince); at != std::string::npos; at = text.find(kSince, at + 1)) {
    text.replace(at + kSince.size(), kTime.size(), kTime);
  }
  return text;
}

// A user whose PATH has the programs under both names, with a history of the days before 5 March
// 2025.
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
    for (const char* name : {"aw-buckets-export.json", "january.json", "february.json"}) {
      writeFile(home() + "/" + name, "{\"buckets\":{}}");
    }
    const ScopedVariable zone("TZ", "UTC");
    const SystemCalendar calendar;
    writeDemoHistory(home() + "/.local/share/Tessum/activities.db",
                     demoHistory({.days = 1, .sessionsPerDay = 12, .seed = 1},
                                 at("2025-03-05T12:00:00Z"), calendar),
                     calendar);
  }

  [[nodiscard]] std::string home() const { return folder_.file("home"); }

  // Runs `line` in a shell; questions are answered with yes. The output combines both streams,
  // shows the home folder as "~", and ends lines with a line feed alone.
  [[nodiscard]] Outcome run(const std::string& line) const {
    ChildProcess shell(
        "sh", {.arguments = {"-c", "cd && exec 2>&1\n" + line},
               .environment = {"HOME=" + home(), "XDG_DATA_HOME=" + home() + "/.local/share",
                               "XDG_CONFIG_HOME=" + home() + "/.config",
                               "PATH=" + folder_.file("bin") + ":/usr/bin:/bin", "TZ=UTC",
                               "LC_ALL=C.UTF-8"}});
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

TEST(Commands, StandInTheirDocumentTheManualAndEachCompletion) {
  const std::string document = readFile(kRoot / "docs/COMMANDS.md");
  const std::string manual = replaced(readFile(kRoot / "packaging/man/tessum.1"), "\\", "");
  const std::vector<std::string> names = commandNames();
  EXPECT_GT(names.size(), 20U);
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(std::regex_search(document, std::regex("\n\\| [^|]*`" + name + "[ `]")));
    EXPECT_TRUE(std::regex_search(manual, std::regex("\n\\.[BI]+R? \"?" + name + "[ \"\n]")));
    for (const char* completion : {"tessum.bash", "_tessum", "tessum.fish"}) {
      const std::string text = readFile(kRoot / "packaging/completions" / completion);
      EXPECT_TRUE(std::regex_search(text, std::regex("[ ']" + name + "[ ':\n]"))) << completion;
    }
  }
}

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

// In the README, "> " precedes the request and "< " the answer, and line ends in the answer's text
// are shown as line ends.
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

// Whether ctest or .ci/run runs the file.
bool isRun(const fs::path& file) {
  for (const char* check : {".ci/run", "tests/benchmarks/in-brief"}) {
    if (file == ".ci/run" || contains(readFile(kRoot / check), file.string())) return true;
  }
  for (fs::path folder = file.parent_path(); !folder.empty(); folder = folder.parent_path()) {
    const fs::path targets = kRoot / folder / "CMakeLists.txt";
    if (!fs::exists(targets)) continue;
    if (contains(readFile(targets), file.lexically_relative(folder).string())) return true;
  }
  return false;
}

TEST(CommandsRunElsewhere, AreShownAndRun) {
  std::set<std::string_view> shown;
  for (const Document& document : allDocuments()) {
    for (const Command& command : document.commands) {
      if (const Elsewhere* entry = findElsewhere(command)) shown.insert(entry->command);
    }
  }
  for (const Elsewhere& entry : kElsewhere) {
    EXPECT_EQ(shown.count(entry.command), 1U) << entry.command;
    EXPECT_TRUE(contains(readFile(kRoot / entry.where), entry.call)) << entry.where;
    EXPECT_TRUE(isRun(entry.where)) << entry.where;
  }
}

}  // namespace
}  // namespace tessum
