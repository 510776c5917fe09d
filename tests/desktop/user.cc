#include "tests/desktop/user.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "core/platform/calendar.h"
#include "tests/support/terminal.h"

#if defined(__linux__)
#include <linux/capability.h>
#include <sys/prctl.h>
#endif

namespace tessum {
namespace {

const SystemCalendar kCalendar;

Outcome finish(ChildProcess& program, std::string output) {
  const ExitStatus status = program.finish();
  return {status.code.value_or(-1), std::move(output), program.errors()};
}

}  // namespace

User::User() {
  variables_ = {{"HOME", home_.path()},
                {"XDG_DATA_HOME", home_.file("data")},
                {"XDG_CONFIG_HOME", home_.file("config")},
                {"LC_ALL", "C.UTF-8"},
                {"DISPLAY", ""},
                {"WAYLAND_DISPLAY", ""},
                {"NO_COLOR", ""},
                {"TERM", "xterm"},
                {"TZ", "UTC"}};
}

void User::writeSettings(const std::string& text) const {
#if defined(__APPLE__)
  const std::string folder = file("Library/Application Support/Tessum");
#else
  const std::string folder = file("config/Tessum");
#endif
  std::filesystem::create_directories(folder);
  writeFile(folder + "/settings.toml", text);
}

Database User::database() const {
  std::filesystem::create_directories(dataFolder());
  return Database(historyPath(), kCalendar);
}

void User::addSession(const char* app, const char* title, const char* start,
                      const char* end) const {
  Activity session{
      .id = {}, .appName = app, .bundleID = {}, .title = {}, .startTime = at(start), .endTime = {}};
  if (title != nullptr) session.title = title;
  if (end != nullptr) session.endTime = at(end);
  database().insert(session);
}

std::vector<std::string> User::environment() const {
  std::vector<std::string> environment;
  for (const auto& [name, value] : variables_) environment.push_back(name + "=" + value);
  return environment;
}

std::unique_ptr<ChildProcess> User::start(const std::vector<std::string>& arguments) const {
  return std::make_unique<ChildProcess>(
      hostProgram(), ChildProcess::Options{.arguments = arguments, .environment = environment()});
}

Outcome User::run(const std::vector<std::string>& arguments, std::string_view input) const {
  const auto program = start(arguments);
  program->write(input);
  return outcomeOf(*program);
}

Outcome User::runWithoutPowers(const std::vector<std::string>& arguments) const {
  ChildProcess program(
      hostProgram(), {.arguments = arguments, .environment = environment(), .prepare = dropPowers});
  return outcomeOf(program);
}

Outcome User::runOnTerminal(const std::vector<std::string>& arguments,
                            unsigned short columns) const {
  Terminal terminal(columns);
  const int screen = terminal.screen();
  ChildProcess program(hostProgram(), {.arguments = arguments,
                                       .environment = environment(),
                                       .prepare = [screen] { dup2(screen, STDOUT_FILENO); }});
  std::string output = terminal.readAll();
  return finish(program, std::move(output));
}

void dropPowers() {
#if defined(__linux__)
  prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
  prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0);
#endif
}

Outcome outcomeOf(ChildProcess& program) {
  program.closeInput();
  std::string output = program.readRest();
  return finish(program, std::move(output));
}

std::string hostProgram() {
  return TESSUM_HOST_PROGRAM;
}

Date at(std::string_view text) {
  const auto date = parseInternetDateTime(text);
  if (!date) throw std::invalid_argument(std::string(text));
  return *date;
}

testing::AssertionResult contains(const std::string& text, const std::string& part) {
  if (text.find(part) != std::string::npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << '"' << part << "\" is not in:\n" << text;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

}  // namespace tessum
