// The completions in the shells that they are for. bash and zsh run on a terminal, where the test
// presses the keys; fish has a command that tells what it completes.

#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/desktop/user.h"
#include "tests/support/child_process.h"
#include "tests/support/eventually.h"
#include "tests/support/terminal.h"

namespace tessum {
namespace {

namespace fs = std::filesystem;

const std::string kCompletions = TESSUM_SOURCE_FOLDER "/packaging/completions/";

struct Case {
  const char* name;
  const char* typed;
  const char* begin;  // of the line, up to the word that is completed
  const char* word;
};

const Case kCases[] = {
    {"Commands", "tessum resu", "tessum", "resume"},
    {"CommandsOfHelp", "tessum help timel", "tessum help", "timeline"},
    {"TheFirstCommandOfHelp", "tessum help setu", "tessum help", "setup"},
    {"Periods", "tessum usage last-w", "tessum usage", "last-week"},
    {"DaysOfTheHistory", "tessum day 2025-03-0", "tessum day", "2025-03-04"},
    {"PeriodsOfOptions", "tessum search x --in yest", "tessum search x --in", "yesterday"},
    {"Clients", "tessum install winds", "tessum install", "windsurf"},
    {"Applications", "tessum usage --app Term", "tessum usage --app", "Terminal"},
    {"ApplicationsWithBlanks", "tessum usage --app Budg", "tessum usage --app", "Budget Planner"},
    {"ApplicationsToTry", "tessum settings try Term", "tessum settings try", "Terminal"},
    {"ApplicationsOfTheTimeline", "tessum timeline --app Term", "tessum timeline --app",
     "Terminal"},
    {"Categories", "tessum day --category Rea", "tessum day --category", "Reading"},
    {"TheOtherName", "Tessum usage --app Term", "Tessum usage --app", "Terminal"},
};

std::string caseName(const testing::TestParamInfo<Case>& info) {
  return info.param.name;
}

class Completions : public testing::TestWithParam<Case> {
 protected:
  Completions() {
    fs::create_directory(user_.file("bin"));
    for (const char* name : {"tessum", "Tessum"}) {
      fs::create_symlink(hostProgram(), user_.file("bin/") + name);
    }
    user_.set("PATH", user_.file("bin") + ":" + std::getenv("PATH"));
    user_.set("ZDOTDIR", user_.file(""));
    user_.addSession("Terminal", nullptr, "2025-03-04T09:00:00Z", "2025-03-04T10:00:00Z");
    user_.addSession("Budget Planner", nullptr, "2025-03-04T10:00:00Z", "2025-03-04T11:00:00Z");
    user_.writeSettings("[[category]]\nname = \"Reading\"\napp = \"Budget\"\n");
  }

  // Skips the test where `test`, a command of the shell, fails.
  void requireShell(const std::string& shell, const std::string& test) const {
    ChildProcess probe(shell, {.arguments = {"-c", test}, .environment = user_.environment()});
    if (probe.finish() != kSuccess) GTEST_SKIP() << "skipped: no " << shell << " to try it in";
  }

  // The line that `shell`, which must have made the file "ready" at its prompt and write its line
  // into the file "line" at Ctrl-T, makes of `typed` when the tabulator key is pressed.
  [[nodiscard]] std::string completed(const std::string& shell,
                                      const std::vector<std::string>& arguments) const {
    Terminal terminal(80);
    const int screen = terminal.screen();
    ChildProcess program(
        shell, {.arguments = arguments, .environment = user_.environment(), .prepare = [screen] {
                  setsid();
                  ioctl(screen, TIOCSCTTY, 0);
                  for (int stream = 0; stream <= 2; ++stream) dup2(screen, stream);
                }});
    EXPECT_TRUE(eventually([&] { return fs::exists(user_.file("ready")); }));
    terminal.type(std::string(GetParam().typed) + "\t\x14");
    EXPECT_TRUE(eventually([&] { return fs::exists(user_.file("line")); }));
    program.kill();
    return fs::exists(user_.file("line")) ? readFile(user_.file("line")) : "";
  }

  // The line that completes the case, with the word's blanks quoted as bash and zsh do it.
  [[nodiscard]] static std::string completeLine() {
    std::string line = std::string(GetParam().begin) + " ";
    for (const char* c = GetParam().word; *c != '\0'; ++c) {
      if (*c == ' ') line += '\\';
      line += *c;
    }
    return line + " ";
  }

  User user_;
};

TEST_P(Completions, WorkInBash) {
  ASSERT_NO_FATAL_FAILURE(requireShell("bash", "type mapfile"));
  if (IsSkipped()) return;
  writeFile(user_.file("bashrc"),
            ". '" + kCompletions +
                "tessum.bash'\n"
                "show() { printf %s \"$READLINE_LINE\" > ~/new; mv ~/new ~/line; }\n"
                "bind -x '\"\\C-t\": show'\n"
                "PROMPT_COMMAND=': > ~/ready'\n");
  EXPECT_EQ(completed("bash", {"--rcfile", user_.file("bashrc"), "-i"}), completeLine());
}

TEST_P(Completions, WorkInZsh) {
  ASSERT_NO_FATAL_FAILURE(requireShell("zsh", "true"));
  if (IsSkipped()) return;
  writeFile(user_.file(".zshrc"),
            "fpath=('" + kCompletions +
                "' $fpath)\n"
                "autoload -Uz compinit && compinit -u -D\n"
                "show() { print -rn -- \"$BUFFER\" > ~/new; mv ~/new ~/line; }\n"
                "zle -N show && bindkey '^T' show\n"
                "precmd() { : > ~/ready; }\n");
  EXPECT_EQ(completed("zsh", {"-d", "-i"}), completeLine());
}

TEST_P(Completions, WorkInFish) {
  ASSERT_NO_FATAL_FAILURE(requireShell("fish", "true"));
  if (IsSkipped()) return;
  ChildProcess fish("fish",
                    {.arguments = {"--no-config", "-c",
                                   "source '" + kCompletions + "tessum.fish'; complete -C '" +
                                       GetParam().typed + "'"},
                     .environment = user_.environment()});
  fish.closeInput();
  std::string found = fish.readRest();
  EXPECT_EQ(fish.finish(), ::tessum::kSuccess) << fish.errors();
  EXPECT_EQ(found.substr(0, found.find_first_of("\t\n")), GetParam().word);
}

INSTANTIATE_TEST_SUITE_P(Words, Completions, testing::ValuesIn(kCases), caseName);

}  // namespace
}  // namespace tessum
