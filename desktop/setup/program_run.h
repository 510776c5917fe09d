// Runs a program of the system to its end.

#pragma once

#include <string>
#include <vector>

namespace tessum {

struct ProgramRun {
  bool hasSucceeded = false;  // it ended with the status 0
  std::string output;         // what it wrote to standard output
};

// Runs the program `arguments[0]`, which is looked for along PATH; its messages go nowhere. A
// program that cannot be started has not succeeded. Waits for its end. Any thread.
[[nodiscard]] ProgramRun runProgram(const std::vector<std::string>& arguments);

}  // namespace tessum
