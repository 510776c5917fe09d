// The main loop over poll(): it sleeps until the next timer is due or a watched descriptor is
// ready. One of those is an eventfd that other threads write to. Nothing else wakes it.

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "core/loop/system_main_loop.h"
#include "core/platform/descriptor.h"

namespace tessum {
namespace {

using SteadyClock = std::chrono::steady_clock;

struct Timer {
  std::optional<SteadyClock::duration> interval;  // absent when it runs once
  SteadyClock::time_point due;
  MainLoop::Task task;
};

struct Watch {
  int descriptor = -1;
  short events = 0;
  MainLoop::Task task;
};

short pollEvents(SystemMainLoop::Readiness readiness) {
  using enum SystemMainLoop::Readiness;
  switch (readiness) {
    case readable:
      return POLLIN;
    case writable:
      return POLLOUT;
    case readableOrWritable:
      break;
  }
  return POLLIN | POLLOUT;
}

SteadyClock::duration durationOf(double seconds) {
  return std::chrono::duration_cast<SteadyClock::duration>(std::chrono::duration<double>(seconds));
}

Descriptor makeEvent() {
  Descriptor event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (event.number() < 0) {
    throw std::system_error(errno, std::generic_category(), "Cannot make an event descriptor");
  }
  return event;
}

}  // namespace

struct SystemMainLoop::State {
  Descriptor wakeUp = makeEvent();
  std::atomic<bool> isQuitting = false;

  std::mutex mutex;  // guards `posted`
  std::deque<Task> posted;

  std::map<TimerToken, Timer> timers;
  std::map<WatchToken, Watch> watches;
  std::uint64_t lastToken = 0;

  void wake() { eventfd_write(wakeUp.number(), 1); }

  // Rounded up: a loop that wakes too early would spin until the timer is due.
  [[nodiscard]] int millisecondsToNextTimer() const {
    if (timers.empty()) return -1;
    auto due = SteadyClock::time_point::max();
    for (const auto& [token, timer] : timers) due = std::min(due, timer.due);
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(due - SteadyClock::now());
    return static_cast<int>(std::clamp<std::int64_t>(wait.count(), 0, INT_MAX));
  }

  // Waits for a descriptor, a timer or a wake-up; returns the watches whose descriptors are ready.
  std::vector<WatchToken> wait() {
    std::vector<pollfd> descriptors{{wakeUp.number(), POLLIN, 0}};
    std::vector<WatchToken> tokens;
    for (const auto& [token, watch] : watches) {
      descriptors.push_back({watch.descriptor, watch.events, 0});
      tokens.push_back(token);
    }
    if (poll(descriptors.data(), descriptors.size(), millisecondsToNextTimer()) < 0) {
      if (errno == EINTR) return {};
      throw std::system_error(errno, std::generic_category(), "Cannot wait for events");
    }
    if (descriptors.front().revents != 0) {
      eventfd_t ignored = 0;
      eventfd_read(wakeUp.number(), &ignored);
    }

    std::vector<WatchToken> ready;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      if (descriptors[i + 1].revents != 0) ready.push_back(tokens[i]);
    }
    return ready;
  }

  // Tasks may end any timer or watch, including their own, so each is looked up just before it
  // runs, and its task is copied.

  void runPosted() {
    std::deque<Task> tasks;
    {
      const std::lock_guard lock(mutex);
      tasks.swap(posted);
    }
    while (!tasks.empty() && !isQuitting) {
      tasks.front()();
      tasks.pop_front();
    }
    const std::lock_guard lock(mutex);
    std::move(tasks.rbegin(), tasks.rend(), std::front_inserter(posted));
  }

  void runTimers() {
    const auto now = SteadyClock::now();
    std::vector<TimerToken> due;
    for (const auto& [token, timer] : timers) {
      if (timer.due <= now) due.push_back(token);
    }
    for (const TimerToken token : due) {
      const auto found = timers.find(token);
      if (found == timers.end() || isQuitting) continue;
      Timer& timer = found->second;
      const Task task = timer.task;
      if (timer.interval) {
        timer.due = std::max(timer.due, now - *timer.interval) + *timer.interval;
      } else {
        timers.erase(found);
      }
      task();
    }
  }

  void runWatches(const std::vector<WatchToken>& ready) {
    for (const WatchToken token : ready) {
      const auto found = watches.find(token);
      if (found == watches.end() || isQuitting) continue;
      const Task task = found->second.task;
      task();
    }
  }
};

SystemMainLoop::SystemMainLoop() : state_(std::make_shared<State>()) {}

SystemMainLoop::~SystemMainLoop() = default;

void SystemMainLoop::post(Task task) {
  {
    const std::lock_guard lock(state_->mutex);
    state_->posted.push_back(std::move(task));
  }
  state_->wake();
}

MainLoop::TimerToken SystemMainLoop::startTimer(double seconds, Task task) {
  const auto interval = durationOf(seconds);
  const TimerToken token{++state_->lastToken};
  state_->timers[token] = {interval, SteadyClock::now() + interval, std::move(task)};
  return token;
}

MainLoop::TimerToken SystemMainLoop::runAfter(double seconds, Task task) {
  const TimerToken token{++state_->lastToken};
  state_->timers[token] = {std::nullopt, SteadyClock::now() + durationOf(seconds), std::move(task)};
  return token;
}

void SystemMainLoop::invalidateTimer(TimerToken token) {
  state_->timers.erase(token);
}

SystemMainLoop::WatchToken SystemMainLoop::watch(int descriptor, Readiness readiness, Task task) {
  const WatchToken token{++state_->lastToken};
  state_->watches[token] = {descriptor, pollEvents(readiness), std::move(task)};
  return token;
}

void SystemMainLoop::setReadiness(WatchToken token, Readiness readiness) {
  const auto found = state_->watches.find(token);
  if (found != state_->watches.end()) found->second.events = pollEvents(readiness);
}

void SystemMainLoop::unwatch(WatchToken token) {
  state_->watches.erase(token);
}

void SystemMainLoop::run() {
  while (!state_->isQuitting) {
    state_->runPosted();
    state_->runTimers();
    if (!state_->isQuitting) state_->runWatches(state_->wait());
  }
  state_->isQuitting = false;
}

void SystemMainLoop::quit() {
  state_->isQuitting = true;
  state_->wake();
}

}  // namespace tessum
