// The program as a whole.

#pragma once

namespace tessum {

// Runs the command that the arguments name and gives the exit status. Says itself what is wrong
// with the arguments; throws what the command throws.
[[nodiscard]] int runCommand(int argc, char** argv);

}  // namespace tessum
