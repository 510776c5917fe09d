#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "core/platform/folders.h"

namespace tessum {
namespace {

constexpr mode_t kUserAlone = 0700;

bool isFolder(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

}  // namespace

void createPrivateFolders(const std::string& path) {
  if (mkdir(path.c_str(), kUserAlone) == 0) return;
  if (errno == ENOENT) {
    const auto slash = path.find_last_of('/');
    if (slash != std::string::npos && slash > 0) {
      createPrivateFolders(path.substr(0, slash));
      if (mkdir(path.c_str(), kUserAlone) == 0) return;
    }
  }
  const int error = errno;
  if (isFolder(path)) return;
  throw std::system_error(error, std::generic_category(), "Cannot create the folder " + path);
}

}  // namespace tessum
