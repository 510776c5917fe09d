// Starting other programs.

#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tessum {

// The descriptors that a program gets as its standard streams. -1 stands for none: such an input is
// at its end, and such an output goes nowhere.
struct ProgramStreams {
  int input = -1;
  int output = -1;
  int errors = -1;
};

// Starts the program `arguments[0]`, which is looked for along PATH unless it names a folder. It
// gets no descriptor but its standard streams. It has a session of its own, so that an interrupt
// typed for this program does not end it, and the usual treatment of signals, whatever that of the
// calling thread.
//
// Returns the process id; the caller has to collect the exit status. Throws std::system_error when
// the program cannot be started. Any thread.
[[nodiscard]] pid_t startProgram(std::vector<std::string> arguments,
                                 const ProgramStreams& streams = {});

// Waits for a process that was started here to end. Returns its exit status, or -1 when a signal
// ended it. Any thread.
int waitForProgram(pid_t process);

}  // namespace tessum
