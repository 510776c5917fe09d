// Brings written bytes to the disk.

#pragma once

namespace tessum {

// Waits until all that was written to the open file `descriptor` would survive a power cut. Returns
// 0, or -1 with errno set, as system calls do. Any thread.
[[nodiscard]] int flushToDisk(int descriptor);

}  // namespace tessum
