// Signals reach the main loop through a pipe. A signal handler has a program-wide effect and takes
// no argument, so the end it writes to is the one global variable of the program. The alternative,
// signals blocked and read as a descriptor, would hand the blocked signals on to every program
// started from here.

#include "core/loop/termination_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <system_error>
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
  // A full pipe already says what there is to say.
  static_cast<void>(write(signalPipe, &byte, 1) + 1);
  errno = savedError;
}

void setHandler(void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  for (const int signal : kSignals) sigaction(signal, &action, nullptr);
}

void prepare(int descriptor) {
  fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  fcntl(descriptor, F_SETFL, O_NONBLOCK);
}

}  // namespace

TerminationSignals::TerminationSignals(SystemMainLoop& loop, std::function<void()> task)
    : loop_(loop) {
  TESSUM_CHECK(signalPipe == kNone, "the termination signals are already taken");
  int ends[2] = {kNone, kNone};
  if (pipe(ends) != 0) {
    throw std::system_error(errno, std::generic_category(), "Cannot make a pipe for signals");
  }
  readEnd_ = Descriptor(ends[0]);
  writeEnd_ = Descriptor(ends[1]);
  prepare(readEnd_.number());
  prepare(writeEnd_.number());
  watch_ = loop.watchReadable(readEnd_.number(), [end = ends[0], task = std::move(task)] {
    char bytes[16];
    while (read(end, bytes, sizeof bytes) > 0) {
    }
    task();
  });
  signalPipe = writeEnd_.number();
  setHandler(noteSignal);
}

TerminationSignals::~TerminationSignals() {
  setHandler(SIG_DFL);
  signalPipe = kNone;
  loop_.unwatch(watch_);
}

}  // namespace tessum
