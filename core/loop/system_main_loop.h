// The real main loop of a program.

#pragma once

#include <memory>
#include <utility>

#include "core/loop/main_loop.h"

namespace tessum {

// Owned by main(); created, run and destroyed on the main thread. One per process.
class SystemMainLoop final : public MainLoop {
 public:
  // What a watch waits for. A descriptor whose peer has closed it, or that has an error, is ready
  // for both.
  enum class Readiness { readable, writable, readableOrWritable };

  // Throws std::system_error when no descriptor is available.
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

  // Runs `task` whenever `descriptor` is ready. The caller keeps ownership of the descriptor and
  // must keep it open until it is unwatched. Main thread only.
  WatchToken watch(int descriptor, Readiness readiness, Task task);

  // Changes what a watch waits for. Does nothing if the watch has ended. Main thread only.
  void setReadiness(WatchToken token, Readiness readiness);

  // Runs tasks, timers and watches until quit(). Main thread only.
  void run();

  // Makes run() return once the current task is done; if called before run(), makes the next run()
  // return at once. Any thread.
  void quit();

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace tessum
