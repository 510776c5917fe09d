// A queue of tasks that run one after another, in the order of posting.

#pragma once

#include <functional>
#include <memory>
#include <string>

namespace tessum {

class SerialQueue {
 public:
  using Task = std::function<void()>;

  virtual ~SerialQueue() = default;

  // The name the queue was made with.
  [[nodiscard]] virtual const std::string& label() const = 0;

  // Runs `task` on the queue after all that were posted before it. Any thread.
  virtual void post(Task task) = 0;

  // Whether the caller runs on this queue.
  [[nodiscard]] virtual bool isCurrent() const = 0;
};

// A queue on a thread of its own, which is made for the first task. Every posted task runs:
// destroying the queue waits for those that are left. Destroyed by one of its own tasks, it does
// not wait, and they run afterwards.
class ThreadQueue final : public SerialQueue {
 public:
  explicit ThreadQueue(std::string label);
  ~ThreadQueue() override;
  ThreadQueue(const ThreadQueue&) = delete;
  ThreadQueue& operator=(const ThreadQueue&) = delete;

  [[nodiscard]] const std::string& label() const override { return label_; }

  // Throws std::system_error when the system gives no thread; the task is then not posted.
  void post(Task task) override;

  [[nodiscard]] bool isCurrent() const override;

 private:
  struct State;

  const std::string label_;
  const std::shared_ptr<State> state_;  // shared with the thread, which may outlive the queue
};

}  // namespace tessum
