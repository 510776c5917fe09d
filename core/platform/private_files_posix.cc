#include "core/platform/private_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "core/platform/descriptor.h"
#include "core/platform/file_error.h"

namespace tessum {
namespace {

constexpr mode_t kFileOfUser = 0600;
constexpr mode_t kFolderOfUser = 0700;
constexpr mode_t kOfOthers = S_IRWXG | S_IRWXO;

bool isFolder(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

bool isOpenToOthers(const std::string& path) {
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0 || !S_ISREG(found.st_mode)) return false;
  return found.st_uid == geteuid() && (found.st_mode & kOfOthers) != 0;
}

}  // namespace

void createPrivateFolders(const std::string& path) {
  if (mkdir(path.c_str(), kFolderOfUser) == 0) return;
  if (errno == ENOENT) {
    const auto slash = path.find_last_of('/');
    if (slash != std::string::npos && slash > 0) {
      createPrivateFolders(path.substr(0, slash));
      if (mkdir(path.c_str(), kFolderOfUser) == 0) return;
    }
  }
  const int error = errno;
  if (isFolder(path)) return;
  throw std::system_error(error, std::generic_category(), "Cannot create the folder " + path);
}

void createPrivateFile(const std::string& path) {
  const Descriptor file(retried(
      [&] { return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileOfUser); }));
  if (file.number() >= 0) fchmod(file.number(), kFileOfUser);  // the umask may have taken more away
}

std::vector<std::string> filesOpenToOthers(const std::string& folder) {
  std::vector<std::string> paths;
  std::error_code error;
  std::filesystem::directory_iterator entry(folder, error);
  for (; entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    const std::string path = entry->path().string();
    if (isOpenToOthers(path)) paths.push_back(path);
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

void closeToOthers(const std::string& path) {
  struct stat found {};
  const bool isDone = lstat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode) &&
                      chmod(path.c_str(), found.st_mode & S_IRWXU) == 0;
  if (isDone) return;
  throwFileError("Cannot take the rights to", path);
}

}  // namespace tessum
