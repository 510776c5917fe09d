// The main loop over CFRunLoop and the main dispatch queue, which it serves.

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

#include <cstdint>
#include <map>
#include <memory>
#include <type_traits>
#include <utility>

#include "core/loop/system_main_loop.h"

namespace tessum {
namespace {

using Task = MainLoop::Task;

// A task on its way to the main queue, and the loop that it belongs to.
struct PostedTask {
  std::weak_ptr<void> loop;
  Task task;
};

void runPostedTask(void* context) {
  const std::unique_ptr<PostedTask> posted(static_cast<PostedTask*>(context));
  if (const auto loop = posted->loop.lock()) posted->task();
}

struct TimerEnder {
  void operator()(CFRunLoopTimerRef timer) const {
    CFRunLoopTimerInvalidate(timer);
    CFRelease(timer);
  }
};

// A task is shared so that it outlives its own end while it runs.
struct Timer {
  std::shared_ptr<const Task> task;
  std::unique_ptr<std::remove_pointer_t<CFRunLoopTimerRef>, TimerEnder> timer;
};

void runTimer(CFRunLoopTimerRef, void* info) {
  const std::shared_ptr<const Task> task = static_cast<Timer*>(info)->task;
  (*task)();
}

// A cancelled source runs its handler no more, as both happen on the main thread. What the handler
// uses goes with the source.
struct SourceEnder {
  void operator()(dispatch_source_t source) const {
    dispatch_source_cancel(source);
    dispatch_release(source);
  }
};

using Watch = std::unique_ptr<std::remove_pointer_t<dispatch_source_t>, SourceEnder>;

void runWatch(void* context) {
  const std::shared_ptr<const Task> task = *static_cast<std::shared_ptr<const Task>*>(context);
  (*task)();
}

void endWatch(void* context) {
  delete static_cast<std::shared_ptr<const Task>*>(context);
}

}  // namespace

struct SystemMainLoop::State {
  std::map<TimerToken, Timer> timers;  // a map's elements stay where they are
  std::map<WatchToken, Watch> watches;
  std::uint64_t lastToken = 0;
};

SystemMainLoop::SystemMainLoop() : state_(std::make_shared<State>()) {}

SystemMainLoop::~SystemMainLoop() = default;

void SystemMainLoop::post(Task task) {
  auto posted = std::make_unique<PostedTask>(PostedTask{state_, std::move(task)});
  dispatch_async_f(dispatch_get_main_queue(), posted.release(), runPostedTask);
}

MainLoop::TimerToken SystemMainLoop::startTimer(double seconds, Task task) {
  const TimerToken token{++state_->lastToken};
  Timer& timer = state_->timers[token];
  timer.task = std::make_shared<const Task>(std::move(task));
  CFRunLoopTimerContext context{0, &timer, nullptr, nullptr, nullptr};
  timer.timer.reset(CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + seconds,
                                         seconds, 0, 0, runTimer, &context));
  CFRunLoopAddTimer(CFRunLoopGetMain(), timer.timer.get(), kCFRunLoopDefaultMode);
  return token;
}

void SystemMainLoop::invalidateTimer(TimerToken token) {
  state_->timers.erase(token);
}

SystemMainLoop::WatchToken SystemMainLoop::watchReadable(int descriptor, Task task) {
  const WatchToken token{++state_->lastToken};
  const auto number = static_cast<std::uintptr_t>(descriptor);
  Watch source(
      dispatch_source_create(DISPATCH_SOURCE_TYPE_READ, number, 0, dispatch_get_main_queue()));
  dispatch_set_context(source.get(),
                       new std::shared_ptr(std::make_shared<const Task>(std::move(task))));
  dispatch_source_set_event_handler_f(source.get(), runWatch);
  dispatch_set_finalizer_f(source.get(), endWatch);
  dispatch_resume(source.get());
  state_->watches[token] = std::move(source);
  return token;
}

void SystemMainLoop::unwatch(WatchToken token) {
  state_->watches.erase(token);
}

void SystemMainLoop::run() {
  CFRunLoopRun();
}

void SystemMainLoop::quit() {
  dispatch_async_f(dispatch_get_main_queue(), nullptr,
                   [](void*) { CFRunLoopStop(CFRunLoopGetMain()); });
}

}  // namespace tessum
