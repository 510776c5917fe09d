#include "tests/support/terminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tessum {

Terminal::Terminal(unsigned short columns) {
  host_ = posix_openpt(O_RDWR | O_NOCTTY);
  const bool isOpen = host_ >= 0 && grantpt(host_) == 0 && unlockpt(host_) == 0;
  screen_ = isOpen ? open(ptsname(host_), O_RDWR | O_NOCTTY) : -1;
  winsize size{};
  size.ws_row = 24;
  size.ws_col = columns;
  if (screen_ < 0 || ioctl(screen_, TIOCSWINSZ, &size) != 0) {
    throw std::system_error(errno, std::generic_category(), "no terminal");
  }
  fcntl(host_, F_SETFD, FD_CLOEXEC);
  fcntl(screen_, F_SETFD, FD_CLOEXEC);
}

Terminal::~Terminal() {
  close(host_);
  if (screen_ >= 0) close(screen_);
}

void Terminal::type(std::string_view keys) const {
  if (write(host_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
    throw std::system_error(errno, std::generic_category(), "nothing can be typed");
  }
}

std::string Terminal::readAll() {
  close(screen_);
  screen_ = -1;
  std::string text;
  char bytes[4096];
  while (true) {
    const ssize_t count = read(host_, bytes, sizeof bytes);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return text;  // the end is an error on some systems
    text.append(bytes, static_cast<std::size_t>(count));
  }
}

}  // namespace tessum
