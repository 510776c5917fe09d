#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "desktop/command_line/standard_output.h"
#include "desktop/commands/commands.h"
#include "desktop/doctor/finding.h"
#include "desktop/setup/first_session.h"
#include "desktop/setup/login_start.h"
#include "desktop/setup/overview.h"
#include "desktop/setup/setup_plan.h"
#include "desktop/text/text_layout.h"

namespace tessum {
namespace {

// How long the first session may take to appear.
constexpr double kPatienceSeconds = 15;

struct SetupOptions {
  bool undo = false;
  bool isSure = false;
  bool isDryRun = false;
};

////////////////////////////////////////////////////////////////////////////////////////////////
// The plan

// A dry run also shows how the files of others change.
void printPlan(const std::string& heading, const std::vector<SetupStep>& steps, bool isDryRun) {
  std::string text = heading + "\n";
  for (const SetupStep& step : steps) {
    text += "  - " + printable(step.plan) + "\n";
    const auto& lines = isDryRun && !step.difference.empty() ? step.difference : step.details;
    for (const std::string& line : lines) text += "      " + printable(line) + "\n";
  }
  print(text);
}

// Asks unless that is not wanted. Sets the status where the answer is not yes.
bool mayGoOn(Host& host, const SetupOptions& options) {
  if (options.isDryRun) {
    print("Nothing was changed.\n");
    return false;
  }
  if (options.isSure) return true;
  const auto answer = answerTo("Do this?");
  if (answer == Answer::yes) return true;
  if (answer == Answer::none) {
    print("\n");
    complain("nobody is there to answer; give --yes to do it without a question.\n");
  }
  print("Nothing was changed.\n");
  host.status = answer == Answer::no ? kFailure : kUsage;
  return false;
}

// Carries out each step, whether or not the one before has failed.
void carryOut(Host& host, const std::vector<SetupStep>& steps, SetupChanges& changes) {
  for (const SetupStep& step : steps) {
    try {
      step.carryOut(changes);
    } catch (const std::exception& error) {
      complain(printableLines("could not " + step.plan + ": " + error.what()) + "\n");
      host.status = kFailure;
    }
  }
}

////////////////////////////////////////////////////////////////////////////////////////////////
// The check at the end

FirstSession awaitFirstSession(const Host& host, double seconds) {
  const bool showsProgress = isatty(STDERR_FILENO) != 0;
  if (showsProgress) std::fputs("Waiting for the first session ...", stderr);
  FirstSession found = waitForFirstSession(host, seconds);
  if (showsProgress) std::fputs("\r\033[K", stderr);
  return found;
}

std::string sessionText(const Activity& session) {
  const bool hasTitle = session.title && !session.title->empty();
  return session.appName + (hasTitle ? " – " + *session.title : "");
}

// Why nothing is recorded, as far as the desktop says it.
std::string reasonText() {
  std::string text = "\nNothing is recorded yet.";
  for (const Finding& finding : checkWorkspace()) {
    if (finding.isProblem()) text += " " + printable(finding.text);
  }
  return text + "\n\"Tessum record\" in a terminal of your desktop says more.\n";
}

// Why there is no session yet, though a recorder runs.
std::string waitingText(const RecorderState& recorder, Date now) {
  if (!recorder.notice.empty()) return recorder.notice;
  if (!recorder.awaySince) return "it begins when a window is in front";
  return "you count as away, " + sinceText(*recorder.awaySince, now) +
         "; it begins when you touch a key or the mouse";
}

// Reads back what was set up, and waits for the first session for `seconds`. Nothing recording is a
// failure.
void check(Host& host, double seconds) {
  FirstSession found;
  if (!overview(host).pause) found = awaitFirstSession(host, seconds);
  const Overview state = overview(host);
  const bool isRecording = state.recorder.isRecording;
  if (!isRecording) host.status = kFailure;
  using enum Table::Alignment;
  Table table({left, left});
  const auto add = [&](const char* name, const std::string& value) {
    table.addRow({{name}, {value, Tone::plain, Table::Fit::wrap}});
  };
  add("Recording", isRecording ? recordingText(state) : "no");
  if (state.pause) add("Paused", pauseText(*state.pause, state.now));
  if (found.session) {
    add("First session", sessionText(*found.session));
  } else if (found.isRecording && !state.pause) {
    add("First session", "none yet; " + waitingText(state.recorder, state.now));
  }
  add("At login", loginText(state));
  const std::string advice = loginAdvice(host);
  if (!advice.empty()) add("", advice);
  const bool maybeRuns = seconds > 0 && !state.informed.empty();
  add("Assistants", assistantsText(state) + (maybeRuns ? "; restart those that are running" : ""));
  if (isRecording) add("Next", nextText(state));
  print("\n" + table.text(standardOutputPaper()) + (isRecording ? "" : reasonText()));
}

////////////////////////////////////////////////////////////////////////////////////////////////
// The command

void setUp(Host& host, const SetupOptions& options) {
  const auto steps = setupSteps(host);
  if (steps.empty()) {
    print("Everything is set up; nothing was changed.\n");
    return check(host, 0);
  }
  printPlan("Tessum keeps all that it records on this computer. Setup will", steps,
            options.isDryRun);
  print("\"Tessum setup --undo\" takes it back.\n");
  if (!mayGoOn(host, options)) return;
  SetupChanges changes(host);
  carryOut(host, steps, changes);
  check(host, kPatienceSeconds);
}

void undo(Host& host, const SetupOptions& options) {
  SetupChanges changes(host);
  const auto steps = undoSteps(host, changes);
  if (changes.all().empty()) {
    print("Setup has changed nothing here that could be taken back.\n");
    return;
  }
  printPlan("Undoing the setup will", steps, options.isDryRun);
  print("The history stays in " + printable(host.locations.dataFolder()) + ".\n");
  if (!mayGoOn(host, options)) return;
  carryOut(host, steps, changes);
  if (host.status != kSuccess) {
    print("The rest was taken back. Run this again once that works.\n");
    return;
  }
  finishUndo(host, changes);
  print("All of it was taken back.\n");
}

}  // namespace

void addSetupCommand(CLI::App& app, Host& host) {
  auto* command = app.add_subcommand(
      "setup", "Record from now and from each login on, and tell your assistants of Tessum");
  const auto options = std::make_shared<SetupOptions>();
  command->add_flag("--undo", options->undo, "take back what setup has done; the history stays");
  command->add_flag("--yes", options->isSure, "do it without asking");
  command->add_flag("--dry-run", options->isDryRun, "show what it would do, and do nothing");
  command->footer(
      "Shows what it will do, then asks. What is set up already stays as it is, so running it\n"
      "again changes nothing. At the end it waits for the first session and says what to type\n"
      "next. The status is 1 when the answer is not yes, when a step fails or when nothing\n"
      "records at the end.\n\n"
      "Examples:\n"
      "  Tessum setup\n"
      "  Tessum setup --dry-run\n"
      "  Tessum setup --yes\n"
      "  Tessum setup --undo");
  command->callback([&host, options] {
    if (options->undo) return undo(host, *options);
    setUp(host, *options);
  });
}

}  // namespace tessum
