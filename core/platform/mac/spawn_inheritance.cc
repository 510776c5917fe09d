#include "core/platform/spawn_inheritance.h"

namespace tessum {

// What the actions open or copy is open in the program all the same.
void inheritStandardStreamsOnly(posix_spawn_file_actions_t&, short& flags) {
  flags = static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT);
}

}  // namespace tessum
