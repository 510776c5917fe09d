// Runs the host program's client commands with a temporary home folder.

#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace tessum {

// The outcome of a run of the host program.
struct ClientRun {
  int status = -1;  // -1 when a signal ended it
  std::string output;
  std::string errors;
};

class ClientUser {
 public:
  [[nodiscard]] const std::string& home() const { return folder_.path(); }

  // The path of `name` in the home folder; its folder is made.
  [[nodiscard]] std::string file(std::string_view name) const {
    const std::string path = folder_.file(name);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    return path;
  }

  [[nodiscard]] std::vector<std::string> environment() const {
    return {"HOME=" + home(), "XDG_CONFIG_HOME=", "XDG_DATA_HOME=", "LC_ALL=C"};
  }

  // `prepare` runs in the child, before the program.
  [[nodiscard]] ClientRun run(const std::vector<std::string>& arguments,
                              const std::string& program = TESSUM_PROGRAM,
                              const std::function<void()>& prepare = nullptr) const {
    ChildProcess::Options options;
    options.arguments = arguments;
    options.environment = environment();
    options.prepare = prepare;
    ChildProcess child(program, options);
    child.closeInput();
    ClientRun run;
    run.output = child.readRest();
    run.status = child.finish().code.value_or(-1);
    run.errors = child.errors();
    return run;
  }

 private:
  TemporaryFolder folder_;
};

}  // namespace tessum
