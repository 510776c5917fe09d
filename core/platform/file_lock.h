// A lock that one process at a time can hold.

#pragma once

#include <optional>
#include <string>

#include "core/platform/descriptor.h"

namespace tessum {

// Held until the object goes or the process ends, in whatever way: the system gives it back, so
// none can be left behind. The file stays. One thread at a time.
class FileLock {
 public:
  // Takes the lock on the file at `path`, which is created for the user alone where it is missing
  // and gets the present moment for its time of modification.
  // Absent when another one holds it. Throws std::system_error with the path in the text.
  [[nodiscard]] static std::optional<FileLock> take(const std::string& path);

 private:
  explicit FileLock(Descriptor file) : file_(std::move(file)) {}

  Descriptor file_;
};

}  // namespace tessum
