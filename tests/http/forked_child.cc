#include "tests/http/forked_child.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>

namespace tessum {

void ForkedChild::Link::report(int number) {
  if (write(out_, &number, sizeof number) != sizeof number) _exit(1);
}

void ForkedChild::Link::waitUntilReleased() {
  char byte = 0;
  while (read(in_, &byte, 1) > 0) {
  }
}

ForkedChild::ForkedChild(const std::function<void(Link&)>& body) {
  int toChild[2];
  int toParent[2];
  if (pipe(toChild) != 0 || pipe(toParent) != 0) {
    ADD_FAILURE() << "no pipes";
    return;
  }
  process_ = fork();
  if (process_ == 0) {
    close(toChild[1]);
    close(toParent[0]);
    Link link(toChild[0], toParent[1]);
    body(link);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  close(toChild[0]);
  close(toParent[1]);
  in_ = toParent[0];
  out_ = toChild[1];
}

ForkedChild::~ForkedChild() {
  release();
}

std::optional<int> ForkedChild::reported() {
  int number = 0;
  if (read(in_, &number, sizeof number) != sizeof number) return std::nullopt;
  return number;
}

int ForkedChild::release() {
  if (process_ <= 0) return 0;
  close(in_);
  close(out_);
  int status = 0;
  rusage used{};
  wait4(std::exchange(process_, -1), &status, 0, &used);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  processorSeconds_ = seconds(used.ru_utime) + seconds(used.ru_stime);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace tessum
