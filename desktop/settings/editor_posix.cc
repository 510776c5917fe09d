#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <system_error>

#include "core/platform/descriptor.h"
#include "desktop/settings/editor.h"

extern char** environ;

namespace tessum {

bool editFile(const std::string& path) {
  // The shell divides the variable into the program and its options.
  std::string name = "sh";
  std::string option = "-c";
  std::string script = "exec ${EDITOR:-vi} \"$1\"";
  std::string file = path;
  char* arguments[] = {name.data(), option.data(), script.data(),
                       name.data(), file.data(),   nullptr};
  pid_t process = 0;
  const int error = posix_spawnp(&process, "sh", nullptr, nullptr, arguments, environ);
  if (error != 0) throw std::system_error(error, std::generic_category(), "cannot start an editor");
  int status = 0;
  if (retried([&] { return waitpid(process, &status, 0); }) < 0) return false;
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace tessum
