#include "core/platform/spawn.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

extern char** environ;  // which no header of macOS declares

namespace tessum {
namespace {

class Streams {
 public:
  Streams(int output, int errors) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    set(STDOUT_FILENO, output);
    set(STDERR_FILENO, errors);
  }
  ~Streams() { posix_spawn_file_actions_destroy(&actions_); }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;

  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  void set(int stream, int descriptor) {
    if (descriptor == -1) {
      posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_WRONLY, 0);
    } else {
      posix_spawn_file_actions_adddup2(&actions_, descriptor, stream);
    }
  }

  posix_spawn_file_actions_t actions_{};
};

class OwnSession {
 public:
  OwnSession() {
    posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigemptyset(&none);
    sigset_t all;
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~OwnSession() { posix_spawnattr_destroy(&attributes_); }
  OwnSession(const OwnSession&) = delete;
  OwnSession& operator=(const OwnSession&) = delete;

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

}  // namespace

pid_t startProgram(std::vector<std::string> arguments, int output, int errors) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  pid_t process = 0;
  const int error = posix_spawnp(&process, pointers[0], Streams(output, errors).get(),
                                 OwnSession().get(), pointers.data(), environ);
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), "Cannot start " + arguments[0]);
  }
  return process;
}

void waitForProgram(pid_t process) {
  while (waitpid(process, nullptr, 0) == -1 && errno == EINTR) {
  }
}

}  // namespace tessum
