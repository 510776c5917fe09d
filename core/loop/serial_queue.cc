#include "core/loop/serial_queue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace tessum {

struct ThreadQueue::State {
  std::mutex mutex;  // guards all the rest
  std::condition_variable changed;
  std::deque<Task> tasks;
  std::thread thread;
  bool isClosing = false;

  // Waits for the next task; absent when there will be none.
  std::optional<Task> next() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return isClosing || !tasks.empty(); });
    if (tasks.empty()) return std::nullopt;
    std::optional<Task> task = std::move(tasks.front());
    tasks.pop_front();
    return task;
  }
};

ThreadQueue::ThreadQueue(std::string label)
    : label_(std::move(label)), state_(std::make_shared<State>()) {}

ThreadQueue::~ThreadQueue() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->isClosing = true;
  }
  state_->changed.notify_one();
  std::thread& thread = state_->thread;  // no longer replaced: nobody else may post now
  if (!thread.joinable()) return;
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();
  } else {
    thread.join();
  }
}

void ThreadQueue::post(Task task) {
  const std::lock_guard lock(state_->mutex);
  if (!state_->thread.joinable()) {
    state_->thread = std::thread([state = state_] {
      while (const auto next = state->next()) (*next)();
    });
  }
  state_->tasks.push_back(std::move(task));
  state_->changed.notify_one();
}

bool ThreadQueue::isCurrent() const {
  const std::lock_guard lock(state_->mutex);
  return state_->thread.get_id() == std::this_thread::get_id();
}

}  // namespace tessum
