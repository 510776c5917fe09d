// Signals reach the main loop through a pipe. A signal handler is process-wide and takes no context
// argument, so the pipe's write end is the program's only global variable. The alternative,
// blocking the signals and reading them from a descriptor, would make every child process inherit
// the blocked signals.

#include "core/loop/termination_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>

#include "core/base/check.h"

namespace tessum {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int kNone = -1;

std::atomic<int> signalPipe{kNone};  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)
static_assert(std::atomic<int>::is_always_lock_free, "it is used in a signal handler");

void noteSignal(int) {
  const int savedError = errno;
  const char byte = 0;
  // A full pipe already wakes the loop.
  static_cast<void>(write(signalPipe, &byte, 1) + 1);
  errno = savedError;
}

void setHandler(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

bool isIgnored(int signal) {
  struct sigaction action {};
  sigaction(signal, nullptr, &action);
  return action.sa_handler == SIG_IGN;
}

}  // namespace

TerminationSignals::TerminationSignals(SystemMainLoop& loop, std::function<void()> task)
    : loop_(loop) {
  TESSUM_CHECK(signalPipe == kNone, "the termination signals are already taken");
  const int readEnd = pipe_.readEnd.number();
  const int writeEnd = pipe_.writeEnd.number();
  for (const int end : {readEnd, writeEnd}) fcntl(end, F_SETFL, O_NONBLOCK);
  watch_ = loop.watchReadable(readEnd, [readEnd, task = std::move(task)] {
    char bytes[16];
    while (read(readEnd, bytes, sizeof bytes) > 0) {
    }
    task();
  });
  signalPipe = writeEnd;
  for (const int signal : kSignals) {
    if (isIgnored(signal)) continue;
    setHandler(signal, noteSignal);
    taken_.push_back(signal);
  }
}

TerminationSignals::~TerminationSignals() {
  for (const int signal : taken_) setHandler(signal, SIG_DFL);
  signalPipe = kNone;
  loop_.unwatch(watch_);
}

}  // namespace tessum
