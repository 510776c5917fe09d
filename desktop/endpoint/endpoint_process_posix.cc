#include "desktop/endpoint/endpoint_process.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "core/platform/descriptor.h"
#include "core/platform/spawn.h"

namespace tessum {
namespace {

// How long answers on their way may take when the endpoint is to end.
constexpr int kLastMilliseconds = 2000;

// A whole number of seconds, as all delays are.
std::string delayText(double seconds) {
  return std::to_string(static_cast<int>(seconds)) + " s";
}

}  // namespace

EndpointProcess::EndpointProcess(std::vector<std::string> command, MainLoop& loop,
                                 const SteadyClock& clock,
                                 std::function<void(const std::string&)> say)
    : command_(std::move(command)), loop_(loop), clock_(clock), say_(std::move(say)) {
  start();
  awaitUrl();
  watch_ = loop_.watchReadable(output_.number(), [this] { drain(); });
}

EndpointProcess::~EndpointProcess() {
  loop_.invalidateTimer(timer_);
  end(kLastMilliseconds);
}

void EndpointProcess::start() {
  Pipe input;
  Pipe output;
  process_ = startProgram(command_, {.input = input.readEnd.number(),
                                     .output = output.writeEnd.number(),
                                     .errors = STDERR_FILENO});
  input_ = std::move(input.writeEnd);
  output_ = std::move(output.readEnd);
  began_ = clock_.now();
}

void EndpointProcess::awaitUrl() {
  while (!url_.ends_with('\n')) {
    const std::string piece = read();
    if (piece.empty()) {
      end(0);
      throw std::runtime_error("The endpoint for assistants has not been opened.");
    }
    url_ += piece;
  }
  url_.pop_back();
}

void EndpointProcess::restart() {
  try {
    start();
    watch_ = loop_.watchReadable(output_.number(), [this] { drain(); });
  } catch (const std::system_error& error) {
    say_(error.what());
    noteEnd();
  }
}

// Its later output is of no interest; only its end is.
void EndpointProcess::drain() {
  if (!read().empty()) return;
  end(0);
  noteEnd();
}

void EndpointProcess::noteEnd() {
  if (secondsBetween(began_, clock_.now()) >= kLongestDelaySeconds) delay_ = kFirstDelaySeconds;
  say_("The endpoint for assistants has ended; it starts again in " + delayText(delay_) + ".");
  timer_ = loop_.runAfter(delay_, [this] { restart(); });
  delay_ = std::min(2 * delay_, kLongestDelaySeconds);
}

// Ends the process, which has as many milliseconds to do so by itself.
void EndpointProcess::end(int milliseconds) {
  loop_.unwatch(watch_);
  if (process_ == 0) return;
  input_ = Descriptor();
  pollfd output{output_.number(), POLLIN, 0};
  retried([&] { return poll(&output, 1, milliseconds); });
  kill(process_, SIGKILL);
  waitForProgram(std::exchange(process_, 0));
  output_ = Descriptor();
}

// The next bytes of its output; none at its end.
std::string EndpointProcess::read() {
  char bytes[256];
  const auto count = retried([&] { return ::read(output_.number(), bytes, sizeof bytes); });
  return {bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

}  // namespace tessum
