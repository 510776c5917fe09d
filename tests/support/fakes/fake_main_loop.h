// A main loop that a test runs step by step, with a fake clock.

#pragma once

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "core/loop/main_loop.h"
#include "tests/support/fakes/fake_clock.h"

namespace tessum {

// Nothing runs by itself: the test's thread, which stands for the main thread, calls runPosted(),
// runUntil() or advance(). Other threads may post. Descriptors are real, time is not.
class FakeMainLoop final : public MainLoop {
 public:
  explicit FakeMainLoop(FakeClock& clock) : clock_(clock) {}

  void post(Task task) override {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(task));
  }

  TimerToken startTimer(double seconds, Task task) override {
    const TimerToken token{++lastToken_};
    timers_[token] = {seconds, movedBy(clock_.now(), seconds), std::move(task)};
    return token;
  }

  TimerToken runAfter(double seconds, Task task) override {
    const TimerToken token{++lastToken_};
    timers_[token] = {0, movedBy(clock_.now(), seconds), [this, token, task = std::move(task)] {
                        timers_.erase(token);
                        task();
                      }};
    return token;
  }

  void invalidateTimer(TimerToken token) override { timers_.erase(token); }

  WatchToken watchReadable(int descriptor, Task task) override {
    const WatchToken token{++lastToken_};
    watches_[token] = {descriptor, std::move(task)};
    return token;
  }

  void unwatch(WatchToken token) override { watches_.erase(token); }

  // Runs the posted tasks, and those that they post. Returns how many ran.
  int runPosted() {
    int count = 0;
    while (Task task = takePosted()) {
      task();
      ++count;
    }
    return count;
  }

  // Runs posted tasks, also those that other threads post later, and the watches of readable
  // descriptors, until `isDone`. False if that takes longer than a minute of real time.
  template <typename Predicate>
  [[nodiscard]] bool runUntil(Predicate isDone) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!isDone()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      if (Task task = takePosted()) {
        task();
      } else {
        runWatches();
      }
    }
    return true;
  }

  // Advances the clock by `seconds`, not negative, and runs each timer when it is due; those due at
  // the same time run in the order of their start. Posted tasks run before the clock moves and
  // after each timer.
  void advance(double seconds) {
    const Date end = movedBy(clock_.now(), seconds);
    runPosted();
    while (true) {
      const auto next = std::min_element(timers_.begin(), timers_.end(), isDueEarlier);
      if (next == timers_.end() || secondsBetween(next->second.due, end) < 0) break;
      clock_.set(next->second.due);
      next->second.due = movedBy(next->second.due, next->second.seconds);
      const Task task = next->second.task;  // a copy, as it may end its own timer
      task();
      runPosted();
    }
    clock_.set(end);
  }

  // The intervals of the running timers, in the order of their start.
  [[nodiscard]] std::vector<double> timerIntervals() const {
    std::vector<double> intervals;
    for (const auto& [token, timer] : timers_) intervals.push_back(timer.seconds);
    return intervals;
  }

 private:
  struct Timer {
    double seconds;
    Date due;
    Task task;
  };
  using Timers = std::map<TimerToken, Timer>;

  struct Watch {
    int descriptor;
    Task task;
  };

  static bool isDueEarlier(const Timers::value_type& a, const Timers::value_type& b) {
    return a.second.due.secondsSince1970 < b.second.due.secondsSince1970;
  }

  // The task posted first; empty if there is none.
  Task takePosted() {
    const std::lock_guard lock(mutex_);
    if (posted_.empty()) return nullptr;
    Task task = std::move(posted_.front());
    posted_.pop_front();
    return task;
  }

  // Waits a moment for a readable descriptor.
  void runWatches() {
    std::vector<pollfd> descriptors;
    std::vector<WatchToken> tokens;
    for (const auto& [token, watch] : watches_) {
      descriptors.push_back({watch.descriptor, POLLIN, 0});
      tokens.push_back(token);
    }
    constexpr int kMilliseconds = 5;
    if (poll(descriptors.data(), static_cast<nfds_t>(descriptors.size()), kMilliseconds) <= 0)
      return;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      const auto found = watches_.find(tokens[i]);
      if (descriptors[i].revents == 0 || found == watches_.end()) continue;
      const Task task = found->second.task;  // a copy, as it may end its own watch
      task();
    }
  }

  FakeClock& clock_;
  Timers timers_;
  std::map<WatchToken, Watch> watches_;
  std::uint64_t lastToken_ = 0;
  std::mutex mutex_;  // guards `posted_`
  std::deque<Task> posted_;
};

}  // namespace tessum
