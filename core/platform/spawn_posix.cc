#include "core/platform/spawn.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "core/platform/descriptor.h"
#include "core/platform/spawn_inheritance.h"

extern char** environ;  // which no header of macOS declares

namespace tessum {
namespace {

// How a program is started: with which streams, in a session of its own, and with the usual
// treatment of signals.
class Setup {
 public:
  explicit Setup(const ProgramStreams& streams) {
    posix_spawn_file_actions_init(&actions_);
    direct(STDIN_FILENO, streams.input);
    direct(STDOUT_FILENO, streams.output);
    direct(STDERR_FILENO, streams.errors);
    short flags = POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    inheritStandardStreamsOnly(actions_, flags);

    posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes_, &none);
    sigset_t all;
    sigfillset(&all);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setflags(&attributes_, flags);
  }
  ~Setup() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&actions_);
  }
  Setup(const Setup&) = delete;
  Setup& operator=(const Setup&) = delete;

  [[nodiscard]] const posix_spawn_file_actions_t* actions() const { return &actions_; }
  [[nodiscard]] const posix_spawnattr_t* attributes() const { return &attributes_; }

 private:
  void direct(int stream, int descriptor) {
    if (descriptor == -1) {
      posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0);
    } else {
      posix_spawn_file_actions_adddup2(&actions_, descriptor, stream);
    }
  }

  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

}  // namespace

pid_t startProgram(std::vector<std::string> arguments, const ProgramStreams& streams) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const Setup setup(streams);
  pid_t process = 0;
  const int error = posix_spawnp(&process, pointers[0], setup.actions(), setup.attributes(),
                                 pointers.data(), environ);
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), "Cannot start " + arguments[0]);
  }
  return process;
}

int waitForProgram(pid_t process) {
  int status = 0;
  retried([&] { return waitpid(process, &status, 0); });
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace tessum
