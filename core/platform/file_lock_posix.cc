#include "core/platform/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace tessum {

std::optional<FileLock> FileLock::take(const std::string& path) {
  Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (file.number() < 0) {
    throw std::system_error(errno, std::generic_category(), "Cannot open " + path);
  }
  while (flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) return std::nullopt;
    if (errno == EINTR) continue;
    throw std::system_error(errno, std::generic_category(), "Cannot lock " + path);
  }
  futimens(file.number(), nullptr);  // whoever looks at the file sees since when it is held
  return FileLock(std::move(file));
}

}  // namespace tessum
