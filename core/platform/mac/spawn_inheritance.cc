#include "core/platform/spawn_inheritance.h"

namespace tessum {

// Descriptors that the actions open or copy stay open in the program.
void inheritStandardStreamsOnly(posix_spawn_file_actions_t&, short& flags) {
  flags = static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT);
}

}  // namespace tessum
