// Starting other programs.

#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tessum {

// Starts the program `arguments[0]`, which is looked for along PATH unless it names a folder. Its
// standard output and standard error go to the descriptors `output` and `errors`, or nowhere where
// that is -1. It has no input and gets no other descriptor. It has a session of its own, so that an
// interrupt typed for this program does not end it, and the usual treatment of signals, whatever
// that of the calling thread.
//
// Gives the process id; the caller has to take the exit status. Throws std::system_error when the
// program cannot be started. Any thread.
[[nodiscard]] pid_t startProgram(std::vector<std::string> arguments, int output = -1,
                                 int errors = -1);

// Waits for the end of a process that was started here, and takes its exit status. Any thread.
void waitForProgram(pid_t process);

}  // namespace tessum
