#include "tests/support/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <ostream>
#include <stdexcept>
#include <system_error>
#include <utility>

extern char** environ;

namespace tessum {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr auto kPatience = std::chrono::seconds(60);
constexpr int kPollMilliseconds = 2;
constexpr int kCannotStart = 127;

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

class Deadline {
 public:
  void check(const char* what) const {
    if (SteadyClock::now() > end_) {
      throw std::runtime_error(std::string("the program did not ") + what + " in time");
    }
  }

 private:
  SteadyClock::time_point end_ = SteadyClock::now() + kPatience;
};

struct Pipe {
  int readEnd = -1;
  int writeEnd = -1;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) fail("pipe");
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  return {ends[0], ends[1]};
}

int makeNamelessFile() {
  std::string path = (std::filesystem::temp_directory_path() / "tessum-errors-XXXXXX").string();
  const int file = mkstemp(path.data());
  if (file < 0) fail("mkstemp");
  fcntl(file, F_SETFD, FD_CLOEXEC);
  unlink(path.c_str());
  return file;
}

void closeIfOpen(int& descriptor) {
  if (descriptor >= 0) close(descriptor);
  descriptor = -1;
}

// Pointers to `texts`, which must outlive them, with a null at the end.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// The test's own variables, with those in `changes` added or replaced.
std::vector<std::string> environmentWith(const std::vector<std::string>& changes) {
  std::vector<std::string> all = changes;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    const std::string_view nameAndSign = text.substr(0, text.find('=') + 1);
    bool isChanged = false;
    for (const std::string& change : changes) isChanged |= change.starts_with(nameAndSign);
    if (!isChanged) all.emplace_back(text);
  }
  return all;
}

ExitStatus exitStatusOf(int status) {
  if (WIFSIGNALED(status)) return {.code = {}, .signal = WTERMSIG(status)};
  return {.code = WEXITSTATUS(status), .signal = {}};
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const ExitStatus& status) {
  if (status.signal) return out << "ended by signal " << *status.signal;
  return out << "ended with status " << status.code.value_or(-1);
}

ChildProcess::ChildProcess(const std::string& program) : ChildProcess(program, Options()) {}

ChildProcess::ChildProcess(const std::string& program, const Options& options) {
  // A program that ends before it has read everything must not end the test.
  signal(SIGPIPE, SIG_IGN);

  std::vector<std::string> arguments = options.arguments;
  arguments.insert(arguments.begin(), program);
  std::vector<std::string> environment = environmentWith(options.environment);
  const std::vector<char*> argumentPointers = pointersTo(arguments);
  const std::vector<char*> environmentPointers = pointersTo(environment);
  Pipe input = makePipe();
  Pipe output = makePipe();
  errors_ = makeNamelessFile();

  id_ = fork();
  if (id_ < 0) fail("fork");
  if (id_ == 0) {
    signal(SIGPIPE, SIG_DFL);
    dup2(input.readEnd, STDIN_FILENO);
    dup2(output.writeEnd, STDOUT_FILENO);
    dup2(errors_, STDERR_FILENO);
    environ = const_cast<char**>(environmentPointers.data());
    if (options.prepare) options.prepare();
    execvp(program.c_str(), argumentPointers.data());
    _exit(kCannotStart);
  }
  close(input.readEnd);
  close(output.writeEnd);
  input_ = input.writeEnd;
  output_ = output.readEnd;
  fcntl(input_, F_SETFL, O_NONBLOCK);
  fcntl(output_, F_SETFL, O_NONBLOCK);
}

ChildProcess::~ChildProcess() {
  if (!status_) {
    ::kill(id_, SIGKILL);
    while (waitpid(id_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  closeIfOpen(input_);
  closeIfOpen(output_);
  closeIfOpen(errors_);
}

// Reads the available output. Waits a moment for some, or for one of `inputEvents` on the input.
void ChildProcess::gatherOutput(short inputEvents) {
  std::array<pollfd, 2> descriptors{pollfd{output_, POLLIN, 0},
                                    pollfd{inputEvents != 0 ? input_ : -1, inputEvents, 0}};
  poll(descriptors.data(), descriptors.size(), kPollMilliseconds);
  if (descriptors[0].revents == 0) return;
  std::array<char, 65536> buffer;
  const ssize_t count = read(output_, buffer.data(), buffer.size());
  if (count > 0) gathered_.append(buffer.data(), static_cast<std::size_t>(count));
  if (count == 0) closeIfOpen(output_);
}

void ChildProcess::write(std::string_view bytes) {
  const Deadline deadline;
  while (!bytes.empty() && input_ >= 0) {
    const ssize_t count = ::write(input_, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EPIPE) {
      return;
    } else if (errno != EAGAIN && errno != EINTR) {
      fail("write");
    }
    if (!bytes.empty()) gatherOutput(POLLOUT);
    deadline.check("read its input");
  }
}

void ChildProcess::writeLine(std::string_view line) {
  write(std::string(line) + "\n");
}

void ChildProcess::closeInput() {
  closeIfOpen(input_);
}

std::optional<std::string> ChildProcess::readLine() {
  const Deadline deadline;
  std::size_t searched = 0;
  for (;;) {
    const auto lineFeed = gathered_.find('\n', searched);
    if (lineFeed != std::string::npos) {
      std::string line = gathered_.substr(0, lineFeed);
      gathered_.erase(0, lineFeed + 1);
      return line;
    }
    if (output_ < 0) break;
    searched = gathered_.size();
    gatherOutput(0);
    deadline.check("answer");
  }
  if (gathered_.empty()) return std::nullopt;
  return std::exchange(gathered_, {});
}

std::string ChildProcess::readRest() {
  const Deadline deadline;
  while (output_ >= 0) {
    gatherOutput(0);
    deadline.check("end its output");
  }
  return std::exchange(gathered_, {});
}

std::string ChildProcess::errors() const {
  std::string text;
  std::array<char, 4096> buffer;
  for (;;) {
    const ssize_t count =
        pread(errors_, buffer.data(), buffer.size(), static_cast<off_t>(text.size()));
    if (count <= 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

void ChildProcess::kill(int signal) {
  if (!status_) ::kill(id_, signal);
}

ExitStatus ChildProcess::wait() {
  const Deadline deadline;
  while (!status_) {
    int status = 0;
    const pid_t ended = waitpid(id_, &status, WNOHANG);
    if (ended == id_) {
      status_ = exitStatusOf(status);
    } else if (ended < 0 && errno != EINTR) {
      fail("waitpid");
    } else {
      gatherOutput(0);
      deadline.check("end");
    }
  }
  return *status_;
}

ExitStatus ChildProcess::finish() {
  closeInput();
  return wait();
}

}  // namespace tessum
