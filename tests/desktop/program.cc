#include "tests/desktop/program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tessum {
namespace {

const SystemCalendar kCalendar;

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// Descriptors of a program that runs: its ends are closed here once it is started.
struct Ends {
  int input = -1;
  int output = -1;
  int errors = -1;
};

pid_t start(const std::vector<std::string>& command,
            const std::map<std::string, std::string>& environment, const Ends& ends) {
  std::vector<std::string> variables;
  for (const auto& [name, value] : environment) variables.push_back(name + "=" + value);
  const auto pointers = [](std::vector<std::string>& texts) {
    std::vector<char*> out;
    for (auto& text : texts) out.push_back(text.data());
    out.push_back(nullptr);
    return out;
  };
  std::vector<std::string> words = command;
  const auto argv = pointers(words);
  const auto envp = pointers(variables);
  const pid_t pid = fork();
  if (pid < 0) fail("fork");
  if (pid == 0) {
    dup2(ends.input, STDIN_FILENO);
    dup2(ends.output, STDOUT_FILENO);
    dup2(ends.errors, STDERR_FILENO);
    execvpe(argv[0], argv.data(), envp.data());
    _exit(127);
  }
  return pid;
}

int waitFor(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) fail("waitpid");
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Reads both descriptors to their ends, whichever has something first.
void readAll(int output, int errors, Outcome& outcome) {
  pollfd ends[] = {{output, POLLIN, 0}, {errors, POLLIN, 0}};
  std::string* texts[] = {&outcome.output, &outcome.errors};
  int open = 2;
  while (open > 0) {
    if (poll(ends, 2, -1) < 0 && errno != EINTR) fail("poll");
    for (int i = 0; i < 2; ++i) {
      if (ends[i].fd < 0 || ends[i].revents == 0) continue;
      char bytes[4096];
      const ssize_t count = read(ends[i].fd, bytes, sizeof bytes);
      if (count > 0) {
        texts[i]->append(bytes, static_cast<std::size_t>(count));
      } else if (count == 0 || errno != EINTR) {  // a terminal whose program is gone gives EIO
        ends[i].fd = -1;
        open -= 1;
      }
    }
  }
}

std::pair<int, int> makePipe() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) fail("pipe");
  return {ends[0], ends[1]};
}

int inputFile(const User& user, const std::string& input) {
  const std::string path = user.home() + "/.input";
  writeFile(path, input);
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) fail("open");
  std::filesystem::remove(path);
  return file;
}

}  // namespace

User::User() {
  environment = {{"HOME", home_.path()},
                 {"XDG_DATA_HOME", home_.file("data")},
                 {"PATH", "/usr/local/bin:/usr/bin:/bin"},
                 {"TERM", "xterm"},
                 {"TZ", "UTC"}};
}

Database User::record() const {
  std::filesystem::create_directories(dataFolder());
  return Database(recordPath(), kCalendar);
}

Outcome User::run(const std::vector<std::string>& arguments, const std::string& input) const {
  std::vector<std::string> command{TESSUM_PROGRAM};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return runOther(command, input);
}

Outcome User::runOther(const std::vector<std::string>& command, const std::string& input) const {
  const auto [outputEnd, output] = makePipe();
  const auto [errorsEnd, errors] = makePipe();
  const Ends ends{inputFile(*this, input), output, errors};
  const pid_t pid = start(command, environment, ends);
  close(ends.input);
  close(output);
  close(errors);
  Outcome outcome;
  readAll(outputEnd, errorsEnd, outcome);
  close(outputEnd);
  close(errorsEnd);
  outcome.status = waitFor(pid);
  return outcome;
}

Outcome User::runOnTerminal(const std::vector<std::string>& arguments,
                            unsigned short columns) const {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) fail("posix_openpt");
  const int screen = open(ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (screen < 0) fail("open");
  winsize size{};
  size.ws_row = 24;
  size.ws_col = columns;
  if (ioctl(screen, TIOCSWINSZ, &size) != 0) fail("ioctl");
  std::vector<std::string> command{TESSUM_PROGRAM};
  command.insert(command.end(), arguments.begin(), arguments.end());

  const auto [errorsEnd, errors] = makePipe();
  const pid_t pid = start(command, environment, {screen, screen, errors});
  close(screen);
  close(errors);
  Outcome outcome;
  readAll(terminal, errorsEnd, outcome);
  close(terminal);
  close(errorsEnd);
  outcome.status = waitFor(pid);
  return outcome;
}

}  // namespace tessum
