#include "desktop/setup/program_run.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <system_error>

#include "core/platform/descriptor.h"
#include "core/platform/spawn.h"

namespace tessum {

ProgramRun runProgram(const std::vector<std::string>& arguments) {
  ProgramRun run;
  try {
    Pipe pipe;
    const pid_t process = startProgram(arguments, {.output = pipe.writeEnd.number()});
    static_cast<void>(pipe.writeEnd.close());
    std::array<char, 4096> buffer{};
    while (true) {
      const auto count =
          retried([&] { return read(pipe.readEnd.number(), buffer.data(), buffer.size()); });
      if (count <= 0) break;
      run.output.append(buffer.data(), static_cast<std::size_t>(count));
    }
    int status = 0;
    run.hasSucceeded = retried([&] { return waitpid(process, &status, 0); }) == process &&
                       WIFEXITED(status) && WEXITSTATUS(status) == 0;
  } catch (const std::system_error&) {
    // It is not installed.
  }
  return run;
}

}  // namespace tessum
