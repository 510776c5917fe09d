// A pipe to another program or thread.

#pragma once

#include "core/platform/descriptor.h"

namespace tessum {

// What is written to `writeEnd` is read from `readEnd`. Programs that are started from here get
// neither, unless it becomes one of their standard streams. One thread at a time.
struct Pipe {
  // Throws std::system_error when the system has no descriptors left.
  Pipe();

  Descriptor readEnd;
  Descriptor writeEnd;
};

}  // namespace tessum
