// The real main loop of a program.

#pragma once

#include <memory>
#include <utility>

#include "core/loop/main_loop.h"

namespace tessum {

// Belongs to main(); made, run and destroyed on the main thread. One per process.
class SystemMainLoop final : public MainLoop {
 public:
  // What a watch waits for. A descriptor that its peer has closed, or that has an error, is ready
  // for both.
  enum class Readiness { readable, writable, readableOrWritable };

  // Throws std::system_error when the system has no descriptors left.
  SystemMainLoop();
  ~SystemMainLoop() override;
  SystemMainLoop(const SystemMainLoop&) = delete;
  SystemMainLoop& operator=(const SystemMainLoop&) = delete;

  void post(Task task) override;
  TimerToken startTimer(double seconds, Task task) override;
  TimerToken runAfter(double seconds, Task task) override;
  void invalidateTimer(TimerToken token) override;
  WatchToken watchReadable(int descriptor, Task task) override {
    return watch(descriptor, Readiness::readable, std::move(task));
  }
  void unwatch(WatchToken token) override;

  // Runs `task` whenever `descriptor` is ready. The descriptor stays the caller's and must stay
  // open until it is unwatched. Main thread only.
  WatchToken watch(int descriptor, Readiness readiness, Task task);

  // Changes what a watch waits for. A watch that has ended is no error. Main thread only.
  void setReadiness(WatchToken token, Readiness readiness);

  // Runs tasks, timers and watches until quit(). Main thread only.
  void run();

  // Lets run() return once the task under way is done; called before run(), it lets the next one
  // return at once. Any thread.
  void quit();

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace tessum
