// Files over the system's calls.
//
// A file is replaced in one step like this: the new bytes go into a temporary file in the same
// folder, are brought to the disk, and only then does that file take the old one's name, which
// the system does at once or not at all. Whoever opens the name finds the old file or the new
// one, and so does the next start after a power cut. A failure up to there leaves the old file as
// it was, and the temporary one is removed; only a process killed on the way leaves it. The
// price: further hard links keep the old bytes, and extended attributes are not carried over.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "core/platform/descriptor.h"
#include "core/platform/files.h"
#include "core/platform/flush.h"

namespace tessum {
namespace {

constexpr mode_t kUserAlone = 0600;
constexpr mode_t kPermissions = 07777;

// Enough for any sensible chain of links; a longer one is taken for a circle.
constexpr int kMostLinks = 40;

[[noreturn]] void fail(std::string_view what, const std::string& path, int error) {
  throw std::system_error(error, std::generic_category(), std::string(what) + " " + path);
}

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
    if (error) fail("Cannot replace", path, error.value());
    followed = followed.parent_path() / target;
  }
  fail("Cannot replace", path, ELOOP);
}

// The file at `path`; absent when there is none. Throws for one that is not to be replaced.
std::optional<struct stat> fileToReplace(const std::string& path) {
  struct stat found {};
  if (retried([&] { return lstat(path.c_str(), &found); }) != 0) {
    if (errno == ENOENT) return std::nullopt;
    fail("Cannot replace", path, errno);
  }
  if (const int error = refusalOf(found)) fail("Cannot replace", path, error);
  return found;
}

// The new file beside the one at `target`: removed when the object goes, unless it took its name.
class NewFile {
 public:
  explicit NewFile(const std::string& target) : target_(target), file_(create()) {
    if (file_.number() == -1) fail();
  }
  ~NewFile() {
    if (isTemporary_) retried([this] { return unlink(path_.c_str()); });
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void write(std::string_view bytes) {
    if (writeAll(file_.number(), bytes) != 0) fail();
  }

  // Only the system's administrator may give a file to another user, so a failure is none; one's
  // own groups can do without.
  void takeOwner(const struct stat& old) {
    if (retried([&] { return fchown(file_.number(), old.st_uid, old.st_gid); }) == 0) return;
    constexpr auto kSameUser = static_cast<uid_t>(-1);
    static_cast<void>(retried([&] { return fchown(file_.number(), kSameUser, old.st_gid); }));
  }

  void setPermissions(mode_t permissions) {
    if (retried([&] { return fchmod(file_.number(), permissions); }) != 0) fail();
  }

  // Brings the bytes to the disk and gives the file the name of the old one.
  void takeName() {
    if (retried([&] { return flushToDisk(file_.number()); }) != 0) fail();
    if (file_.close() != 0 && errno != EINTR) fail();
    if (retried([&] { return rename(path_.c_str(), target_.c_str()); }) != 0) fail();
    isTemporary_ = false;
  }

 private:
  // A short name that no longer starts or ends like the target's, so that no application takes it
  // for a configuration file, and that fits every file system.
  int create() {
    return retried([this] {
      path_ = (std::filesystem::path(target_).parent_path() / ".tessum-XXXXXX").string();
      return mkostemp(path_.data(), O_CLOEXEC);
    });
  }

  [[noreturn]] void fail() const { tessum::fail("Cannot replace", target_, errno); }

  const std::string target_;
  std::string path_;
  Descriptor file_;
  bool isTemporary_ = true;
};

}  // namespace

bool SystemFiles::exists(const std::string& path) const {
  struct stat found {};
  return retried([&] { return stat(path.c_str(), &found); }) == 0;
}

std::string SystemFiles::read(const std::string& path) const {
  // Without waiting: a pipe that nobody writes to would hold up the opening.
  const Descriptor file(
      retried([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
  struct stat found {};
  if (file.number() == -1 || retried([&] { return fstat(file.number(), &found); }) != 0) {
    fail("Cannot read", path, errno);
  }
  if (const int error = refusalOf(found)) fail("Cannot read", path, error);

  std::string bytes;
  char buffer[16384];
  while (true) {
    const auto count = retried([&] { return ::read(file.number(), buffer, sizeof buffer); });
    if (count == -1) fail("Cannot read", path, errno);
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
  const auto old = fileToReplace(target);
  NewFile file(target);
  file.write(bytes);
  if (old) file.takeOwner(*old);
  file.setPermissions(old ? old->st_mode & kPermissions : kUserAlone);
  file.takeName();
}

}  // namespace tessum
