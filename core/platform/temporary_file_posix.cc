// The maker of a temporary file holds a lock on it, which the system takes back when the last
// process that has the file open ends, in whatever way. So a file that can be locked is one that
// was left behind. On file systems without locks, age has to tell.

#include "core/platform/temporary_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "core/platform/file_error.h"

namespace tessum {
namespace {

constexpr std::string_view kPlaceholders = "XXXXXX";

// Returns 0, or -1 with errno set: EWOULDBLOCK when somebody else holds the lock.
int lock(int file) {
  return retried([&] { return flock(file, LOCK_EX | LOCK_NB); });
}

bool isOld(const struct stat& file) {
  constexpr std::time_t kOldAge = 3600;  // in seconds
  return std::time(nullptr) - file.st_mtime > kOldAge;
}

void removeIfLeftBehind(const std::string& path) {
  const Descriptor file(
      retried([&] { return open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC); }));
  struct stat found {};
  if (file.number() == -1 || fstat(file.number(), &found) != 0) return;
  if (!S_ISREG(found.st_mode) || found.st_uid != geteuid()) return;
  const bool isFree = lock(file.number()) == 0;
  if (isFree || (errno != EWOULDBLOCK && isOld(found))) unlink(path.c_str());
}

std::string prefixFor(std::string_view purpose) {
  return "." + std::string(purpose) + "-";
}

// False when the new file was taken for one that was left behind before its lock was there.
bool keep(int file, const std::string& path) {
  if (lock(file) != 0 && errno == EWOULDBLOCK) return false;
  return access(path.c_str(), F_OK) == 0 || errno != ENOENT;
}

}  // namespace

void removeTemporaryFilesLeftBehind(const std::string& folder, std::string_view purpose) {
  const std::string prefix = prefixFor(purpose);
  std::error_code error;
  std::filesystem::directory_iterator entry(folder, error);
  for (; entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.starts_with(prefix) && name.size() == prefix.size() + kPlaceholders.size()) {
      removeIfLeftBehind(entry->path().string());
    }
  }
}

TemporaryFile::TemporaryFile(const std::string& folder, std::string_view purpose) {
  removeTemporaryFilesLeftBehind(folder, purpose);
  const std::string prefix = prefixFor(purpose);
  std::string path;
  do {
    file_ = Descriptor(retried([&] {
      path = folder + "/" + prefix + std::string(kPlaceholders);
      return mkostemp(path.data(), O_CLOEXEC);
    }));
    if (file_.number() == -1) throwFileError("Cannot create a file in", folder);
  } while (!keep(file_.number(), path));
  path_ = std::move(path);
}

TemporaryFile::~TemporaryFile() {
  if (!path_.empty()) retried([this] { return unlink(path_.c_str()); });
}

void TemporaryFile::moveTo(const std::string& path) {
  // A network's file system may find out only when the file is closed that there was no room. The
  // copy keeps the lock until the file has its name.
  const Descriptor copy(retried([this] { return fcntl(file_.number(), F_DUPFD_CLOEXEC, 0); }));
  if (copy.number() == -1) throwFileError("Cannot write", path);
  if (file_.close() != 0 && errno != EINTR) throwFileError("Cannot write", path);
  if (retried([&] { return std::rename(path_.c_str(), path.c_str()); }) != 0) {
    throwFileError("Cannot write", path);
  }
  path_.clear();
}

}  // namespace tessum
