#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <system_error>
#include <vector>

#include "desktop/recording/recorder_state.h"

namespace tessum {
namespace {

class OpenFile {
 public:
  explicit OpenFile(const std::string& path) : number_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  ~OpenFile() {
    if (number_ >= 0) close(number_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  [[nodiscard]] int number() const { return number_; }

 private:
  int number_;
};

}  // namespace

RecorderState recorderState(const Locations& locations) {
  const std::string path = locations.dataFolder() + "/recorder.lock";
  const auto fail = [&] {
    throw std::system_error(errno, std::generic_category(), "cannot look at " + path);
  };
  const OpenFile file(path);
  if (file.number() < 0) {
    if (errno == ENOENT || errno == ENOTDIR) return {};
    fail();
  }
  // A shared lock is refused as long as the recorder has its own, and two that look at the same
  // time do not take each other for recorders.
  if (flock(file.number(), LOCK_SH | LOCK_NB) == 0) return {};
  if (errno != EWOULDBLOCK) fail();
  struct stat status {};
  if (fstat(file.number(), &status) != 0) fail();
  return {.isRecording = true, .since = Date{static_cast<double>(status.st_mtime)}};
}

std::optional<Activity> currentSession(const RecorderState& state,
                                       const std::vector<Activity>& openSessions) {
  if (!state.isRecording || openSessions.empty()) return std::nullopt;
  return openSessions.back();
}

}  // namespace tessum
