// A lock that one process at a time can hold.

#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "core/base/date.h"
#include "core/platform/descriptor.h"

namespace tessum {

// Held until the object is destroyed or the process ends, however it ends: the system releases the
// lock, so none can be left behind. The file stays; its content and its time of modification are
// what the holder publishes about itself. A process must not open the file of a lock that it holds,
// as closing the file would release the lock. One thread at a time.
class FileLock {
 public:
  // Takes the lock on the file at `path`, which is created for the user alone where it is missing.
  // Absent when another process holds it. Throws std::system_error with the path in the text.
  [[nodiscard]] static std::optional<FileLock> take(const std::string& path);

  // Makes `content` the whole content of the file. A failure is not reported.
  void write(std::string_view content) const;

  // Makes the present moment the file's time of modification. A failure is not reported.
  void touch() const;

 private:
  explicit FileLock(Descriptor file) : file_(std::move(file)) {}

  Descriptor file_;
};

// The file of a lock as other processes see it.
struct LockFile {
  bool isHeld = false;
  std::optional<pid_t> holder = {};  // its process; absent when not held or not known here
  Date lastModified;
  std::string content;
};

// Looks at the file at `path` without taking its lock, not even for a moment; absent when there is
// none. Not for a process that holds the lock. Throws std::system_error with the path in the text.
[[nodiscard]] std::optional<LockFile> readLockFile(const std::string& path);

}  // namespace tessum
