// Injects faults into the system calls of a program with strace.

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/child_process.h"

namespace tessum {

// One call in the run of a program that makes the same calls each time.
struct SystemCall {
  std::string name;
  int occurrence = 0;  // among the calls with that name, from 1
};

// Whether this system lets one program trace another. Throws if there is no strace.
[[nodiscard]] bool canInjectFaults();

// A program to run, with its arguments and environment variables.
struct TracedProgram {
  std::string program;
  std::vector<std::string> arguments;
  std::vector<std::string> environment;

  // The calls that it makes, from the first that mentions `text` to its end, except those that
  // manage memory or get random numbers.
  [[nodiscard]] std::vector<SystemCall> callsFrom(std::string_view text) const;

  // Runs it with one call replaced by `fault`, such as "error=ENOSPC" or "signal=KILL".
  [[nodiscard]] ExitStatus runWithFault(const SystemCall& call, const std::string& fault) const;

 private:
  [[nodiscard]] ExitStatus trace(std::vector<std::string> options) const;
};

}  // namespace tessum
