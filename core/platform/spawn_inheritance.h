// Which open files a started program gets from this one.

#pragma once

#include <spawn.h>

namespace tessum {

// Has posix_spawn, called with `actions` and `flags`, give the program no descriptors but 0 to 2.
// To be called after all other actions have been added. Any thread.
void inheritStandardStreamsOnly(posix_spawn_file_actions_t& actions, short& flags);

}  // namespace tessum
