#include "core/platform/temporary_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <utility>

namespace tessum {
namespace {

[[noreturn]] void fail(std::string_view what, const std::string& path) {
  throw std::system_error(errno, std::generic_category(), std::string(what) + " " + path);
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& folder) {
  std::string path = folder + "/.download-XXXXXX";
  file_ = Descriptor(mkostemp(path.data(), O_CLOEXEC));
  if (file_.number() == -1) fail("Cannot create a file in", folder);
  path_ = std::move(path);
}

TemporaryFile::~TemporaryFile() {
  if (!path_.empty()) unlink(path_.c_str());
}

void TemporaryFile::moveTo(const std::string& path) {
  // A network's file system may find out only now that there was no room.
  if (file_.close() != 0 && errno != EINTR) fail("Cannot write", path_);
  if (std::rename(path_.c_str(), path.c_str()) != 0) fail("Cannot create", path);
  path_.clear();
}

}  // namespace tessum
