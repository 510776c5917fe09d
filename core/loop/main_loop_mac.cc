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

// A task posted to the main queue, and its loop.
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

// Shared so that a task that ends its own timer stays alive while it runs.
struct Timer {
  std::shared_ptr<const Task> task;
  std::unique_ptr<std::remove_pointer_t<CFRunLoopTimerRef>, TimerEnder> timer;
};

void runTimer(CFRunLoopTimerRef, void* info) {
  const std::shared_ptr<const Task> task = static_cast<Timer*>(info)->task;
  (*task)();
}

// `timer` must not move.
void addTimer(Timer& timer, double seconds, CFTimeInterval interval, Task task) {
  timer.task = std::make_shared<const Task>(std::move(task));
  CFRunLoopTimerContext context{0, &timer, nullptr, nullptr, nullptr};
  timer.timer.reset(CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + seconds,
                                         interval, 0, 0, runTimer, &context));
  CFRunLoopAddTimer(CFRunLoopGetMain(), timer.timer.get(), kCFRunLoopDefaultMode);
}

// A cancelled source does not run its handler again, because both happen on the main thread. The
// handler's data is destroyed with the source.
struct SourceEnder {
  void operator()(dispatch_source_t source) const {
    dispatch_source_cancel(source);
    dispatch_release(source);
  }
};

using Source = std::unique_ptr<std::remove_pointer_t<dispatch_source_t>, SourceEnder>;

void runWatch(void* context) {
  const std::shared_ptr<const Task> task = *static_cast<std::shared_ptr<const Task>*>(context);
  (*task)();
}

void endWatch(void* context) {
  delete static_cast<std::shared_ptr<const Task>*>(context);
}

Source makeSource(dispatch_source_type_t type, int descriptor,
                  const std::shared_ptr<const Task>& task) {
  const auto number = static_cast<std::uintptr_t>(descriptor);
  Source source(dispatch_source_create(type, number, 0, dispatch_get_main_queue()));
  dispatch_set_context(source.get(), new std::shared_ptr(task));
  dispatch_source_set_event_handler_f(source.get(), runWatch);
  dispatch_set_finalizer_f(source.get(), endWatch);
  dispatch_resume(source.get());
  return source;
}

struct Watch {
  int descriptor;
  std::shared_ptr<const Task> task;
  Source reading;  // null when the watch does not wait for it
  Source writing;
};

void wait(Watch& watch, SystemMainLoop::Readiness readiness) {
  using enum SystemMainLoop::Readiness;
  watch.reading.reset();
  watch.writing.reset();
  if (readiness != writable) {
    watch.reading = makeSource(DISPATCH_SOURCE_TYPE_READ, watch.descriptor, watch.task);
  }
  if (readiness != readable) {
    watch.writing = makeSource(DISPATCH_SOURCE_TYPE_WRITE, watch.descriptor, watch.task);
  }
}

}  // namespace

struct SystemMainLoop::State {
  std::map<TimerToken, Timer> timers;  // a map's elements do not move
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
  addTimer(state_->timers[token], seconds, seconds, std::move(task));
  return token;
}

MainLoop::TimerToken SystemMainLoop::runAfter(double seconds, Task task) {
  const TimerToken token{++state_->lastToken};
  constexpr CFTimeInterval kOnce = 0;
  addTimer(state_->timers[token], seconds, kOnce, [this, token, task = std::move(task)] {
    invalidateTimer(token);
    task();
  });
  return token;
}

void SystemMainLoop::invalidateTimer(TimerToken token) {
  state_->timers.erase(token);
}

SystemMainLoop::WatchToken SystemMainLoop::watch(int descriptor, Readiness readiness, Task task) {
  const WatchToken token{++state_->lastToken};
  Watch& added = state_->watches[token];
  added = {descriptor, std::make_shared<const Task>(std::move(task)), nullptr, nullptr};
  wait(added, readiness);
  return token;
}

void SystemMainLoop::setReadiness(WatchToken token, Readiness readiness) {
  const auto found = state_->watches.find(token);
  if (found != state_->watches.end()) wait(found->second, readiness);
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
