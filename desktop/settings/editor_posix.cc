#include "desktop/settings/editor.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "core/platform/descriptor.h"
#include "core/platform/spawn_inheritance.h"

extern char** environ;

namespace tessum {
namespace {

// Starts a program that gets the standard streams of this one, its signals and its terminal.
// Returns what posix_spawnp does.
int startHere(pid_t& process, const char* program, char* const* arguments) {
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_adddup2(&actions, stream, stream);
  }
  short flags = 0;
  inheritStandardStreamsOnly(actions, flags);
  posix_spawnattr_t attributes{};
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, flags);
  const int error = posix_spawnp(&process, program, &actions, &attributes, arguments, environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return error;
}

}  // namespace

bool editFile(const std::string& path) {
  // The shell splits the variable into the program and its options.
  std::string name = "sh";
  std::string option = "-c";
  std::string script = "exec ${EDITOR:-vi} \"$1\"";
  std::string file = path;
  char* arguments[] = {name.data(), option.data(), script.data(),
                       name.data(), file.data(),   nullptr};
  pid_t process = 0;
  const int error = startHere(process, "sh", arguments);
  if (error != 0) throw std::system_error(error, std::generic_category(), "cannot start an editor");
  int status = 0;
  if (retried([&] { return waitpid(process, &status, 0); }) < 0) return false;
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace tessum
