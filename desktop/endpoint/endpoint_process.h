// The endpoint in a process of its own, so that a request that stops the engine costs its sender
// the connection, and nothing else ends.

#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/loop/main_loop.h"
#include "core/platform/descriptor.h"
#include "core/platform/steady_clock.h"

namespace tessum {

// Runs for the lifetime of the object. The process gets a pipe as its standard input and has to end
// when that ends, so it never outlives this one, however this one ends. Main thread only.
class EndpointProcess {
 public:
  // The delay before it is started again. It doubles each time, and starts over once the endpoint
  // has lasted as long as the longest delay.
  static constexpr double kFirstDelaySeconds = 1;
  static constexpr double kLongestDelaySeconds = 60;

  // Starts `command`, waits for the line that it writes when it is open, and starts it again
  // whenever it ends. Its standard error is that of this process. `say` gets a line when it has
  // ended. `loop` and `clock` must outlive the object. Throws std::system_error when it cannot be
  // started, and std::runtime_error when it ends before it is open, for a reason that it says.
  EndpointProcess(std::vector<std::string> command, MainLoop& loop, const SteadyClock& clock,
                  std::function<void(const std::string&)> say);

  // Ends the process, which has a moment to finish its answers, and waits for its end.
  ~EndpointProcess();
  EndpointProcess(const EndpointProcess&) = delete;
  EndpointProcess& operator=(const EndpointProcess&) = delete;

  // The line it wrote: where it is found.
  [[nodiscard]] const std::string& url() const { return url_; }

 private:
  void start();
  void awaitUrl();
  void restart();
  void drain();
  void noteEnd();
  void end(int milliseconds);
  [[nodiscard]] std::string read();

  const std::vector<std::string> command_;
  MainLoop& loop_;
  const SteadyClock& clock_;
  const std::function<void(const std::string&)> say_;
  std::string url_;
  double delay_ = kFirstDelaySeconds;
  Moment began_;
  pid_t process_ = 0;  // 0 while none runs
  Descriptor input_;
  Descriptor output_;
  MainLoop::WatchToken watch_{};
  MainLoop::TimerToken timer_{};
};

}  // namespace tessum
