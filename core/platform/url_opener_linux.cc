#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <thread>

#include "core/platform/url_opener.h"

namespace tessum {
namespace {

// Where the opener's input comes from and its chatter goes: it is not a part of this program.
class NoStreams {
 public:
  NoStreams() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  }
  ~NoStreams() { posix_spawn_file_actions_destroy(&actions_); }
  NoStreams(const NoStreams&) = delete;
  NoStreams& operator=(const NoStreams&) = delete;

  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

// A session of its own, so that an interrupt typed for this program does not end the one that was
// opened, and the usual treatment of signals, whatever this thread's is.
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

void SystemUrlOpener::open(const std::string& url) const {
  std::string program = "xdg-open";
  std::string argument = url;
  char* const arguments[] = {program.data(), argument.data(), nullptr};
  pid_t child = 0;
  if (posix_spawnp(&child, program.c_str(), NoStreams().get(), OwnSession().get(), arguments,
                   environ) != 0) {
    return;
  }
  // It may run as long as the application it starts; somebody has to take its exit status.
  std::thread([child] {
    while (waitpid(child, nullptr, 0) == -1 && errno == EINTR) {
    }
  }).detach();
}

}  // namespace tessum
