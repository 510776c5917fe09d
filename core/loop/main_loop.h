// The main thread's loop: tasks from other threads, and timers.

#pragma once

#include <cstdint>
#include <functional>

namespace tessum {

class MainLoop {
 public:
  using Task = std::function<void()>;

  // Identifies one timer of one loop; never reused.
  enum class TimerToken : std::uint64_t {};

  virtual ~MainLoop() = default;

  // Runs `task` on the main thread after the current task, in the order of posting. Tasks that are
  // still pending when the loop is destroyed never run. Any thread.
  virtual void post(Task task) = 0;

  // Runs `task` every `seconds`, the first time after that many; runs that are missed are skipped.
  // The timer runs until it is invalidated or the loop is destroyed, whether or not its token is
  // kept. Main thread only.
  virtual TimerToken startTimer(double seconds, Task task) = 0;

  // Runs `task` once, after `seconds`. Main thread only.
  virtual TimerToken runAfter(double seconds, Task task) = 0;

  // Ends a timer: its task does not run again. Does nothing if it has already ended. Main thread
  // only.
  virtual void invalidateTimer(TimerToken token) = 0;

  // Identifies one watch of one loop; never reused.
  enum class WatchToken : std::uint64_t {};

  // Runs `task` whenever `descriptor` has bytes to read or has been closed by its peer. The
  // descriptor stays the caller's and must stay open until it is unwatched. Main thread only.
  virtual WatchToken watchReadable(int descriptor, Task task) = 0;

  // Ends a watch: its task does not run again. Does nothing if it has already ended. Main thread
  // only.
  virtual void unwatch(WatchToken token) = 0;
};

}  // namespace tessum
