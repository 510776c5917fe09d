// Files over the system's calls.
//
// A file is replaced in one step like this: the new bytes go into a temporary file in the same
// folder and are flushed to the disk. Then that file takes the old one's name, which the system
// does at once or not at all. Whoever opens the name finds the old file or the new one, and so does
// the next start after a power cut. A failure before that leaves the old file as it was. The price:
// further hard links keep the old bytes, and extended attributes are not carried over.

#include "core/platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "core/platform/descriptor.h"
#include "core/platform/file_error.h"
#include "core/platform/flush.h"
#include "core/platform/temporary_file.h"

namespace tessum {
namespace {

constexpr std::string_view kPurpose = "tessum-new";
constexpr mode_t kUserAlone = 0600;
constexpr mode_t kPermissions = 07777;

// Enough for any sensible chain of links; a longer one is taken for a circle.
constexpr int kMostLinks = 40;

// Why a file of this kind is not one to read or replace; 0 when it is.
int refusalOf(const struct stat& file) {
  if (S_ISREG(file.st_mode)) return 0;
  return S_ISDIR(file.st_mode) ? EISDIR : EINVAL;
}

// The path that `path` stands for when the symbolic links it names are followed. Nothing need
// exist there.
std::string followLinks(const std::string& path) {
  std::filesystem::path followed = path;
  for (int links = 0; links < kMostLinks; ++links) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(followed, error);
    if (error == std::errc::interrupted) continue;
    if (error == std::errc::invalid_argument || error == std::errc::no_such_file_or_directory) {
      return followed.string();
    }
    if (error) throwFileError("Cannot replace", path, error.value());
    followed = followed.parent_path() / target;
  }
  throwFileError("Cannot replace", path, ELOOP);
}

// The file at `path`; absent when there is none. Throws for one that is not to be replaced.
std::optional<struct stat> fileToReplace(const std::string& path) {
  struct stat found {};
  if (retried([&] { return lstat(path.c_str(), &found); }) != 0) {
    if (errno == ENOENT) return std::nullopt;
    throwFileError("Cannot replace", path);
  }
  if (const int error = refusalOf(found)) throwFileError("Cannot replace", path, error);
  return found;
}

// Gives the new file the owner of the one that it replaces, as far as the system allows: only the
// administrator may give a file to another user, others only to a group of their own.
void takeOwner(int file, const struct stat& old) {
  if (retried([&] { return fchown(file, old.st_uid, old.st_gid); }) == 0) return;
  constexpr auto kSameUser = static_cast<uid_t>(-1);
  static_cast<void>(retried([&] { return fchown(file, kSameUser, old.st_gid); }));
}

// The permissions of the file that replaces `old` and now belongs to `group`. With another group,
// the members of either are others to one of the two files, so the group and the others get only
// what both had: nobody may do more than before.
mode_t permissionsLike(const struct stat& old, gid_t group) {
  if (group == old.st_gid) return old.st_mode & kPermissions;
  const unsigned user = old.st_mode & S_IRWXU;
  const unsigned common = (old.st_mode >> 3U) & old.st_mode & S_IRWXO;
  return static_cast<mode_t>(user | (common << 3U) | common);
}

std::string folderOf(const std::string& path) {
  std::string folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

}  // namespace

void removeLeftBehind(const std::string& path) {
  try {
    removeTemporaryFilesLeftBehind(folderOf(followLinks(path)), kPurpose);
  } catch (const std::system_error&) {
    // A circle of links has no folder.
  }
}

bool SystemFiles::exists(const std::string& path) const {
  struct stat found {};
  return retried([&] { return stat(path.c_str(), &found); }) == 0;
}

std::string SystemFiles::read(const std::string& path) const {
  // Without waiting: opening a pipe that nobody writes to would wait for a writer.
  const Descriptor file(
      retried([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
  struct stat found {};
  if (file.number() == -1 || retried([&] { return fstat(file.number(), &found); }) != 0) {
    throwFileError("Cannot read", path);
  }
  if (const int error = refusalOf(found)) throwFileError("Cannot read", path, error);

  std::string bytes;
  char buffer[16384];
  while (true) {
    const auto count = retried([&] { return ::read(file.number(), buffer, sizeof buffer); });
    if (count == -1) throwFileError("Cannot read", path);
    if (count == 0) return bytes;
    bytes.append(buffer, static_cast<std::size_t>(count));
  }
}

void SystemFiles::createFolders(const std::string& path) const {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) throw std::system_error(error, "Cannot create the folder " + path);
}

void SystemFiles::replace(const std::string& path, std::string_view bytes) const {
  const std::string target = followLinks(path);
  const auto require = [&](int result) {
    if (result != 0) throwFileError("Cannot replace", target);
  };
  const auto old = fileToReplace(target);
  TemporaryFile file(folderOf(target), kPurpose);
  require(writeAll(file.descriptor(), bytes));
  mode_t permissions = kUserAlone;
  if (old) {
    takeOwner(file.descriptor(), *old);
    struct stat made {};
    require(retried([&] { return fstat(file.descriptor(), &made); }));
    permissions = permissionsLike(*old, made.st_gid);
  }
  require(retried([&] { return fchmod(file.descriptor(), permissions); }));
  require(retried([&] { return flushToDisk(file.descriptor()); }));
  file.moveTo(target);
}

}  // namespace tessum
