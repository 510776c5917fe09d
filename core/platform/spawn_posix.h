// Starting other programs.

#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tessum {

// Starts the program `arguments[0]`, which PATH leads to unless it names a folder. Its standard
// output is the descriptor `output`, nowhere if that is -1; it has no input, and what it says on
// standard error is lost, since that is no part of this program. It has a session of its own, so
// that an interrupt typed for this program does not end it, and the usual treatment of signals,
// whatever that of the calling thread.
//
// Gives the process id; the caller has to take the exit status. Throws std::system_error when the
// program cannot be started. Any thread.
[[nodiscard]] pid_t startProgram(std::vector<std::string> arguments, int output = -1);

// Waits for the end of a process that was started here, and takes its exit status. Any thread.
void waitForProgram(pid_t process);

}  // namespace tessum
