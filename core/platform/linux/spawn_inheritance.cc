#include <unistd.h>

#include "core/platform/spawn_inheritance.h"

namespace tessum {

void inheritStandardStreamsOnly(posix_spawn_file_actions_t& actions, short&) {
  posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

}  // namespace tessum
