#include "core/platform/file_lock.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "core/platform/file_error.h"

namespace tessum {
namespace {

struct flock wholeFile() {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return lock;
}

}  // namespace

std::optional<FileLock> FileLock::take(const std::string& path) {
  Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (file.number() < 0) throwFileError("Cannot open", path);
  struct flock lock = wholeFile();
  while (fcntl(file.number(), F_SETLK, &lock) != 0) {
    if (errno == EACCES || errno == EAGAIN) return std::nullopt;
    if (errno != EINTR) throwFileError("Cannot lock", path);
  }
  return FileLock(std::move(file));
}

void FileLock::write(std::string_view content) const {
  // The new text goes in before the rest of a longer old one is cut off, so that it is never empty.
  if (pwrite(file_.number(), content.data(), content.size(), 0) < 0) return;
  static_cast<void>(ftruncate(file_.number(), static_cast<off_t>(content.size())) + 1);
  touch();
}

void FileLock::touch() const {
  futimens(file_.number(), nullptr);
}

std::optional<LockFile> readLockFile(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.number() < 0) {
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throwFileError("Cannot look at", path);
  }
  struct flock lock = wholeFile();
  if (fcntl(file.number(), F_GETLK, &lock) != 0) throwFileError("Cannot look at", path);
  struct stat status {};
  if (fstat(file.number(), &status) != 0) throwFileError("Cannot look at", path);
  LockFile found{.isHeld = lock.l_type != F_UNLCK,
                 .lastModified = {static_cast<double>(status.st_mtime)},
                 .content = {}};
  // A holder in another container has no number here.
  if (found.isHeld && lock.l_pid > 0) found.holder = lock.l_pid;
  std::array<char, 4096> buffer{};
  while (true) {
    const ssize_t count = read(file.number(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return found;
    found.content.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

}  // namespace tessum
